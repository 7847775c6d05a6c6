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

std::optional<double> MeasureFrequency(std::span<const double> times,
                                       std::span<const double> values) {
  const auto whole = MeasureTrace(values);
  if (!whole) return std::nullopt;
  const double middle = 0.5 * (whole->Minimum + whole->Maximum);
  const double band = 0.25 * whole->PeakToPeak();
  std::optional<double> first;
  double last = 0.0;
  double passed = 0.0;  // where it last rose through the middle
  int rises = 0;
  bool low = false;
  for (std::size_t i = 1; i < values.size(); ++i) {
    const double before = values[i - 1];
    low = low || before < middle - band;
    if (before < middle && values[i] >= middle) {
      passed = times[i] - (times[i] - times[i - 1]) * (values[i] - middle) / (values[i] - before);
    }
    if (!low || !(values[i] > middle + band)) continue;
    low = false;
    if (!first) first = passed;
    last = passed;
    ++rises;
  }
  if (rises < 2) return std::nullopt;
  return (rises - 1) / (last - *first);
}

}  // namespace torvane
