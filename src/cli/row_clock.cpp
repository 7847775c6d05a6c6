#include "cli/row_clock.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace torvane::cli {

double NextRowTime(double time, double every, double tolerance) {
  // From here on neighbouring whole numbers are not all representable.
  constexpr double LargestCount = 9007199254740992.0;
  const double justAfter = std::nextafter(time, std::numeric_limits<double>::infinity());
  const double reached = time + tolerance;
  double k = std::floor(reached / every) + 1.0;
  if (!(k < LargestCount)) return justAfter;
  // The quotient is rounded; the multiples decide.
  while (k > 1.0 && (k - 1.0) * every > reached) k -= 1.0;
  while (k * every <= reached) k += 1.0;
  return std::max(k * every - tolerance, justAfter);
}

}  // namespace torvane::cli
