#include "instruments/scope/screen_measures.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace torvane {

std::optional<TraceMeasures> MeasureTrace(std::span<const double> values) {
  TraceMeasures measures;
  double sum = 0.0;
  double squares = 0.0;
  std::size_t count = 0;
  for (const double value : values) {
    if (!std::isfinite(value)) continue;
    measures.Minimum = count == 0 ? value : std::min(measures.Minimum, value);
    measures.Maximum = count == 0 ? value : std::max(measures.Maximum, value);
    sum += value;
    squares += value * value;
    ++count;
  }
  if (count == 0) return std::nullopt;
  measures.Mean = sum / static_cast<double>(count);
  measures.Rms = std::sqrt(squares / static_cast<double>(count));
  return measures;
}

}  // namespace torvane
