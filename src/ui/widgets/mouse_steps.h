#pragma once

#include <cmath>

#include "core/scale_steps.h"

namespace torvane {

/// What is dragged stands at hundredths of a division, for numbers that can be read.
inline double SteppedTo(double value, double scale) {
  constexpr double StepsPerDivision = 100.0;
  return std::round(value * StepsPerDivision / scale) * scale / StepsPerDivision;
}

/// A scale after so many steps of the wheel: up is a smaller one, which shows less, larger.
inline double TurnedScale(double scale, int steps) {
  for (; steps > 0; --steps) scale = NextLowest125(scale);
  for (; steps < 0; ++steps) scale = NextHighest125(scale);
  return scale;
}

}  // namespace torvane
