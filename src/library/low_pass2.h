#pragma once

#include <tuple>

#include "core/time_driven.h"
#include "core/variable.h"

namespace torvane {

class Constant;

/// Continuous second-order low-pass, unity gain at DC:
///
///     H(s) = w^2 / (s^2 + 2 zeta w s + w^2)
///
/// Frequency f = w / 2 pi in Hz and damping zeta, both 0 or above; at 0 Hz the output goes on as it
/// moves. The model writes the input and reads the output that the last evaluation left.
class ZelLowPass2 final : public TimeDriven {
 public:
  ZelLowPass2(ZelBenchTop& bench, double frequencyHz, double damping);

  void AtTime(double /*t*/) override {
    BeginRun();
    Evaluate();
  }
  void Reset(ResetKind kind) override;

  /// Takes what the linked constants have become; nothing changes them within a run.
  void BeginRun() {
    if (linked_) [[unlikely]] {
      FollowLinks();
    }
  }

  /// Slopes and output from the present states and input.
  void Evaluate() {
    const double x1 = position_.Value;
    const double x2 = rate_.Value;
    position_.Derivative = x2;
    rate_.Derivative = omegaSquared_ * (u_ - x1) - twoZetaOmega_ * x2;
    y_ = x1;
  }

  auto States() { return std::tie(position_, rate_); }

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
  StateVariable position_;
  StateVariable rate_;
};

}  // namespace torvane
