#pragma once

#include <array>
#include <tuple>

#include "library/on_bench.h"

namespace torvane {

/// Continuous first-order low-pass, unity gain at DC:
///
///     H(s) = w / (s + w)
///
/// Frequency w / 2 pi in Hz, 0 or above; at 0 Hz the output holds. The model writes the input and
/// reads the output that the last evaluation left.
class LowPass1 {
 public:
  static constexpr std::array StateNames{"LowPass1"};
  static constexpr const char* Fault = "Fault in ZelLowPass1 :: ZelLowPass1";

  explicit LowPass1(double frequencyHz) { SetFrequency(frequencyHz); }

  /// Slope and output from the present state and input.
  void Evaluate() {
    state_.Derivative = omega_ * (u_ - state_);
    y_ = state_;
  }
  void FollowReset(ResetKind kind);

  auto States() { return std::tie(state_); }
  auto Inputs() { return std::tie(u_); }

  void SetInput(double u) { u_ = u; }
  double Output() const { return y_; }

  void SetFrequency(double hz);

 private:
  double u_ = 0.0;
  double y_ = 0.0;
  double omega_ = 0.0;
  State state_;
};

/// The filter with numbers of its own, registered with a bench.
class ZelLowPass1 final : public LowPass1, public OnBench<LowPass1> {
 public:
  ZelLowPass1(ZelBenchTop& bench, double frequencyHz)
      : LowPass1(frequencyHz), OnBench(bench, static_cast<LowPass1&>(*this)) {}
};

}  // namespace torvane
