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

/// How often a trace comes back, per unit of its times: its rises through the middle of its
/// extremes, from a quarter of them below to a quarter above. Nothing with fewer than two.
std::optional<double> MeasureFrequency(std::span<const double> times,
                                       std::span<const double> values);

}  // namespace torvane
