#pragma once

#include "library/d_second_order.h"

namespace torvane {

/// Sampled second-order low-pass with poles matched to frequency (Hz) and damping, both 0 or above,
/// and unity gain at DC; at 0 Hz the output goes on as it moves.
class ZelDLowPass2 final : public ZelDSecondOrder {
 public:
  /// `initial` is the output before the first step.
  ZelDLowPass2(const ZelDController* clock, double frequencyHz, double damping,
               double initial = 0.0);

  void ComputeCoefficients() override;

  void SetFrequency(double hz);
  void SetDamping(double damping);

 private:
  double omega_;
  double zeta_;
};

}  // namespace torvane
