#pragma once

#include "library/d_library_class.h"

namespace torvane {

/// Sampled first-order low-pass, pole-matched, unity gain at DC:
///
///     y = (1 - p) x + p y1      with p = exp(-w T)
///
/// Frequency w / 2 pi in Hz, 0 or above; at 0 Hz the output holds. T is the clock's period when the
/// coefficients are worked out.
class ZelDLowPass1 final : public ZelDLibraryClass {
 public:
  /// `initial` is the output before the first step.
  ZelDLowPass1(const ZelDController* clock, double frequencyHz, double initial = 0.0);

  double Step(double x) override;
  void ComputeCoefficients() override;
  void SetFrequency(double hz);

 private:
  std::vector<double*> PastValues() override { return {&y1_}; }

  double b0_ = 0.0;
  double a1_ = 0.0;  // -p, as in 1 + a1 / z
  double y1_;
  double omega_ = 0.0;
};

}  // namespace torvane
