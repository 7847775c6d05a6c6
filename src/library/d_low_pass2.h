#pragma once

#include "library/d_second_order.h"

namespace torvane {

/// Sampled second-order low-pass, pole-matched, unity gain at DC:
///
///     y = (1 + C1 + C2) x - C1 y1 - C2 y2      with C1, C2 the matched pair of w, zeta and T
///
/// Frequency w / 2 pi in Hz and damping zeta, both 0 or above; at 0 Hz the output goes on as it
/// moves. T is the clock's period when the coefficients are worked out.
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
