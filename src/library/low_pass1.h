#pragma once

#include <tuple>

#include "core/time_driven.h"
#include "core/variable.h"

namespace torvane {

/// Continuous first-order low-pass, unity gain at DC:
///
///     H(s) = w / (s + w)
///
/// Frequency w / 2 pi in Hz, 0 or above; at 0 Hz the output holds. The model writes the input and
/// reads the output that the last evaluation left.
class ZelLowPass1 final : public TimeDriven {
 public:
  ZelLowPass1(ZelBenchTop& bench, double frequencyHz);

  void AtTime(double /*t*/) override {
    state_.Derivative = omega_ * (u_ - state_.Value);
    y_ = state_.Value;
  }
  void Reset(ResetKind kind) override;

  auto States() { return std::tie(state_); }

  void SetInput(double u) { u_ = u; }
  double Output() const { return y_; }

  void SetFrequency(double hz);

 private:
  double u_ = 0.0;
  double y_ = 0.0;
  double omega_ = 0.0;
  StateVariable state_;
};

}  // namespace torvane
