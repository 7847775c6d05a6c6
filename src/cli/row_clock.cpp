#include "cli/row_clock.h"

#include <cmath>
#include <limits>

namespace torvane::cli {

double NextRowTime(double time, double every) {
  // From here on neighbouring whole numbers are not all representable.
  constexpr double LargestCount = 9007199254740992.0;
  const double justAfter = std::nextafter(time, std::numeric_limits<double>::infinity());
  double k = std::floor(time / every) + 1.0;
  if (!(k < LargestCount)) return justAfter;
  // The quotient is rounded; the multiples decide.
  while (k > 1.0 && (k - 1.0) * every > time) k -= 1.0;
  while (k * every <= time) k += 1.0;
  return k * every;
}

}  // namespace torvane::cli
