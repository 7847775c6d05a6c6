#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace torvane {

/// Why a measure of a step cannot be told.
enum class StepGap {
  None,
  NoStep,      ///< the command does not jump
  FewPoints,   ///< too few points between this jump and the next
  NotFinite,   ///< the response has a value that is not a finite number
  Still,       ///< the response does not move
  NotSettled,  ///< it moves on when the trace ends
  Returns,     ///< it settles where it was before
  OtherWay,    ///< it first leaves the other way by more than its height
  Coarse       ///< it moves too fast between two points
};

/// The reason in a word or two, for a table's cell.
const char* ShortReason(StepGap gap);
/// The reason as a clause.
const char* Reason(StepGap gap);

/// One measure: its value, and to what it is known, both in one unit; or why there is none.
struct StepFigure {
  double Value = 0.0;
  double Resolution = 0.0;
  StepGap Gap = StepGap::None;

  /// The value with the digits that are known; a gap gives nothing.
  std::string Text() const;
};

/// How a response follows a step of its command. Times in the unit of the trace's times.
struct StepMeasures {
  StepFigure Overshoot;  ///< past the final value, in per cent of the step; 0 when there is none
  StepFigure Rise;       ///< from 10 to 90 % of the step
  StepFigure Settling;   ///< from the command's jump until it stays within 2 % of the step
  StepFigure Delay;      ///< from the command's jump to 50 % of the step

  static StepMeasures Without(StepGap gap);
  /// Of the first measure that is missing.
  StepGap Gap() const;
};

/// Points of a step, from the last one before the command's jump to the last before its next one.
struct StepStretch {
  std::size_t Before = 0;
  std::size_t End = 0;  ///< behind the last point
};

/// The first jump, from one point to the next, of more than half of all that the command moves.
std::optional<StepStretch> FindStep(std::span<const double> command);

/// A command and a response, with their points in common, oldest first.
struct StepTraces {
  std::span<const double> Times;
  std::span<const double> Command;
  std::span<const double> Response;
  bool SameUnit = false;  ///< the response can have the command's value as its own
};

/// When the command jumped, and how well that is known.
struct JumpTime {
  double At = 0.0;
  double Resolution = 0.0;
  double SolverStep = 0.0;  ///< points no farther apart than this miss nothing
};

/// Measures the response to one step.
///
/// Its final value is the mean of its last eighth if it stands there: what is told is the same
/// whether it ends at that mean or where the drift that is left leads to, to half a per cent and
/// half a point's distance in time. A response that has not settled, but has passed the command's
/// end value and comes back to it, or swings around it less and less, is measured against the
/// command: from its value before the jump to the one behind it. A time is interpolated between
/// points, that of a stair taken from the middle, and a peak is that of the parabola through the
/// highest point and its neighbours.
StepMeasures MeasureStep(const StepTraces& traces, const StepStretch& stretch,
                         const JumpTime& jump);

}  // namespace torvane
