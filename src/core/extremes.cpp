#include "core/extremes.h"

#include <algorithm>
#include <cstddef>

#include "core/double_pair.h"

namespace torvane {

Extremes ExtremesOf(std::span<const double> values) {
  DoublePair least{values.front(), values.front()};
  DoublePair greatest = least;
  std::size_t i = 0;
  for (; i + 2 <= values.size(); i += 2) {
    const DoublePair pair = DoublePairAt(&values[i]);
    least = pair < least ? pair : least;
    greatest = pair > greatest ? pair : greatest;
  }
  Extremes extremes{std::min(least[0], least[1]), std::max(greatest[0], greatest[1])};
  if (i < values.size()) {
    extremes.Least = std::min(extremes.Least, values[i]);
    extremes.Greatest = std::max(extremes.Greatest, values[i]);
  }
  return extremes;
}

}  // namespace torvane
