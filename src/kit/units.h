#pragma once

#include "core/angle.h"
#include "core/variable.h"

namespace torvane {

// Loops compute in radians and seconds; instruments show what users think in.
inline constexpr double RpmToRad = TwoPi / 60.0;  ///< rad/s per RPM
inline constexpr double RadToRpm = 60.0 / TwoPi;  ///< RPM per rad/s
inline constexpr double RadToRevs = 1.0 / TwoPi;
inline constexpr double RadToDeg = 360.0 / TwoPi;

/// Display defaults of a signal that a new scope shows; scale and offset are in the shown unit.
constexpr DisplayDefaults Shown(double scale, double offset = 0.0, double multiplier = 1.0) {
  return {scale, offset, multiplier, true};
}
/// As Shown, of a signal that a new scope does not show.
constexpr DisplayDefaults Hidden(double scale, double multiplier = 1.0) {
  return {scale, 0.0, multiplier, false};
}

/// The time axis of every model: a screen of 20 ms. Where that is too short for a model's lesson,
/// the model gives its scope another time base.
inline constexpr DisplayDefaults TimeAxis{0.002, 1.0, 1.0, false};

}  // namespace torvane
