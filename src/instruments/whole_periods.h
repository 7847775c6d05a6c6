#pragma once

#include <algorithm>
#include <cmath>

namespace torvane {

/// Periods that a correlation runs over when so many would do: rounded up to a whole number, at
/// least one. A thousandth above a whole number still counts as that number.
inline double WholePeriods(double periods) {
  return std::max(1.0, std::floor(periods + 0.999));
}

}  // namespace torvane
