#pragma once

#include <array>
#include <tuple>

#include "library/on_bench.h"

namespace torvane {

class Constant;

/// Continuous second-order low-pass, unity gain at DC:
///
///     H(s) = w^2 / (s^2 + 2 zeta w s + w^2)
///
/// Frequency f = w / 2 pi in Hz and damping zeta, both 0 or above; at 0 Hz the output goes on as it
/// moves. The model writes the input and reads the output that the last evaluation left.
class LowPass2 {
 public:
  static constexpr std::array StateNames{"LowPass2 #1", "LowPass2 #2"};
  static constexpr const char* Fault = "Fault in ZelLowPass2 :: ZelLowPass2";

  LowPass2(double frequencyHz, double damping);

  /// Takes what the linked constants have become; nothing changes them within a run.
  void BeginRun() {
    if (linked_) [[unlikely]] {
      FollowLinks();
    }
  }

  /// Slopes and output from the present states and input.
  void Evaluate() {
    const double x1 = position_;
    const double x2 = rate_;
    position_.Derivative = x2;
    rate_.Derivative = omegaSquared_ * (u_ - x1) - twoZetaOmega_ * x2;
    y_ = x1;
  }
  void FollowReset(ResetKind kind);

  auto States() { return std::tie(position_, rate_); }
  auto Inputs() { return std::tie(u_); }

  void SetInput(double u) { u_ = u; }
  double Output() const { return y_; }

  void SetFrequency(double hz);
  void SetDamping(double damping);
  double Frequency() const { return frequency_; }
  double Damping() const { return damping_; }

  /// From now on the block follows the constant: it takes each new value, once, at the next
  /// evaluation. The block reads the constant's changed flag, so nothing else may.
  void LinkFrequency(Constant& hz) {
    frequencyLink_ = &hz;
    linked_ = true;
  }
  void LinkDamping(Constant& damping) {
    dampingLink_ = &damping;
    linked_ = true;
  }

 private:
  void FollowLinks();
  void ComputeCoefficients();

  double u_ = 0.0;
  double y_ = 0.0;
  Constant* frequencyLink_ = nullptr;
  Constant* dampingLink_ = nullptr;
  bool linked_ = false;
  double frequency_;
  double damping_;
  double twoZetaOmega_ = 0.0;
  double omegaSquared_ = 0.0;
  State position_;
  State rate_;
};

/// The filter with numbers of its own, registered with a bench.
class ZelLowPass2 final : public LowPass2, public OnBench<LowPass2> {
 public:
  ZelLowPass2(ZelBenchTop& bench, double frequencyHz, double damping)
      : LowPass2(frequencyHz, damping), OnBench(bench, static_cast<LowPass2&>(*this)) {}
};

}  // namespace torvane
