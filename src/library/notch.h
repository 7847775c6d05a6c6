#pragma once

#include <array>
#include <tuple>

#include "library/on_bench.h"

namespace torvane {

/// Continuous two-pole, two-zero filter in observer form, unity gain at DC:
///
///     H(s) = (wp/wz)^2 (s^2 + 2 zz wz s + wz^2) / (s^2 + 2 zp wp s + wp^2)
///
/// With one frequency and undamped zeros it is a true notch. Frequencies in Hz and dampings are 0
/// or above; with the zeros at 0 Hz the ratio wp/wz counts as 1, its limit when poles and zeros
/// move together. The model writes the input and reads the output that the last evaluation left.
class Notch {
 public:
  static constexpr std::array StateNames{"Notch #1", "Notch #2"};
  static constexpr const char* Fault = "Fault in ZelNotch :: ZelNotch";

  /// A true notch.
  Notch(double frequencyHz, double damping) : Notch(frequencyHz, damping, frequencyHz, 0.0) {}

  /// The general form.
  Notch(double poleHz, double poleDamping, double zeroHz, double zeroDamping);

  /// Slopes and output from the present states and input.
  void Evaluate() {
    y_ = b0_ * u_ + first_;
    first_.Derivative = b1_ * u_ + second_ - a1_ * y_;
    second_.Derivative = a2_ * (u_ - y_);
  }
  void FollowReset(ResetKind kind);

  auto States() { return std::tie(first_, second_); }
  auto Inputs() { return std::tie(u_); }

  void SetInput(double u) { u_ = u; }
  double Output() const { return y_; }

  /// Frequency of poles and zeros alike.
  void SetFrequency(double hz);
  /// Damping of the poles.
  void SetDamping(double damping);

 private:
  void ComputeCoefficients();

  double b0_ = 0.0;
  double b1_ = 0.0;
  double a2_ = 0.0;
  double a1_ = 0.0;
  double poleOmega_;
  double zeroOmega_;
  double poleZeta_;
  double zeroZeta_;
  double u_ = 0.0;
  double y_ = 0.0;
  State first_;
  State second_;
};

/// The filter with numbers of its own, registered with a bench.
class ZelNotch final : public Notch, public OnBench<Notch> {
 public:
  ZelNotch(ZelBenchTop& bench, double frequencyHz, double damping)
      : Notch(frequencyHz, damping), OnBench(bench, static_cast<Notch&>(*this)) {}
  ZelNotch(ZelBenchTop& bench, double poleHz, double poleDamping, double zeroHz, double zeroDamping)
      : Notch(poleHz, poleDamping, zeroHz, zeroDamping),
        OnBench(bench, static_cast<Notch&>(*this)) {}
};

}  // namespace torvane
