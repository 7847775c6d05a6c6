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

/// How a response follows a step of its command, from its value before the step to the one on which
/// it settles. Times in seconds.
struct StepMeasures {
  double OvershootPercent =
      0.0;                    ///< past the final value, of the step's height; 0 when there is none
  double RiseTime = 0.0;      ///< from 10 to 90 % of the height
  double SettlingTime = 0.0;  ///< from the step until it stays within 2 % of the height
  double Delay = 0.0;         ///< from the step to 50 % of the height
};

/// Measures the response to the first step of the command, up to the command's next one. The three
/// traces have their points in common, oldest first; times between points are interpolated, the
/// step itself counts from the first point that shows it.
///
/// Nothing without a step (a jump, from one point to the next, of more than half of all that the
/// command moves), or when the response does not settle before the next step, does not move, or is
/// not finite.
std::optional<StepMeasures> MeasureStep(std::span<const double> times,
                                        std::span<const double> command,
                                        std::span<const double> response);

}  // namespace torvane
