#pragma once

#include <optional>
#include <span>

namespace torvane {

/// What a trace amounts to, in the units of its values.
struct TraceMeasures {
  double Mean = 0.0;
  double Rms = 0.0;
  double Minimum = 0.0;
  double Maximum = 0.0;
  double PeakToPeak() const { return Maximum - Minimum; }
};

/// Of the finite values; nothing when there is none.
std::optional<TraceMeasures> MeasureTrace(std::span<const double> values);

}  // namespace torvane
