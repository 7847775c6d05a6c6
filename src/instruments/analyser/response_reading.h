#pragma once

#include <cmath>

#include "core/angle.h"

namespace torvane {

inline constexpr double DegreesPerRadian = 180.0 / Pi;

/// Reads instead of the gain of nothing, dB.
inline constexpr double NoGain = -200.0;

/// 20 log10 of a magnitude; NoGain when it is not positive.
inline double GainDb(double magnitude) {
  return magnitude > 0.0 ? 20.0 * std::log10(magnitude) : NoGain;
}

inline constexpr double Turn = 360.0;  ///< degrees

/// Phase of a spectral line in degrees, in (-270, 90]; exactly +-90 when the real part is 0.
inline double PhaseDeg(double re, double im) {
  if (re == 0.0) return im < 0.0 ? -90.0 : 90.0;
  const double phase = std::atan(im / re) * DegreesPerRadian;
  return re < 0.0 ? phase - 180.0 : phase;
}

/// One turn back from above 90 degrees, or forth from below -270.
inline double WrapPhase(double degrees) {
  if (degrees > 90.0) return degrees - Turn;
  if (degrees < -270.0) return degrees + Turn;
  return degrees;
}

/// The same phase in (-270, 90], however many turns it is away.
inline double OneTurn(double degrees) {
  const double phase = std::remainder(degrees + 90.0, Turn) - 90.0;
  return phase <= -270.0 ? phase + Turn : phase;
}

/// Two neighbouring phases lie on either side of a wrap.
inline bool PhaseWraps(double one, double next) {
  return std::abs(next - one) > 180.0;
}

}  // namespace torvane
