#pragma once

#include <cmath>

namespace torvane::bench {

/// The square wave of the generator for a hand-fused loop: only its value at the end of a step
/// matters, so it is worked out once a step.
struct FusedSquare {
  double FreqHz;
  double Amplitude;
  double Value = 0.0;

  void EndStep(double t) {
    const double cycles = t * FreqHz + 0.0 * 0.002777777777777778;
    const double x = cycles - std::floor(cycles);
    Value = x < 0.5 ? 0.0 + Amplitude : 0.0 - Amplitude;
  }
};

/// Second-order low-pass as a loop would write it in place: states, input and the output that lags
/// one evaluation.
struct FusedLowPass2 {
  double TwoZetaOmega;
  double OmegaSquared;
  double X1 = 0.0;
  double X2 = 0.0;
  double U = 0.0;
  double Y = 0.0;

  static FusedLowPass2 At(double hz, double zeta) {
    const double omega = hz * 2.0 * 3.1415926;
    return {2.0 * zeta * hz * 2.0 * 3.1415926, omega * omega};
  }
};

/// The combine of a step in extended precision.
inline double Combine(double start, double slopes, double h) {
  return static_cast<double>(static_cast<long double>(start) + static_cast<long double>(slopes) *
                                                                   static_cast<long double>(h) *
                                                                   (1.0L / 6.0L));
}

}  // namespace torvane::bench
