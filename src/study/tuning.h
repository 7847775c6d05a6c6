#pragma once

#include <functional>
#include <string>
#include <vector>

#include "study/design.h"
#include "study/requirement.h"

namespace torvane {

/// What a tuning is looked for: it meets all requirements, and of those that do it has the best of
/// a measure, if there is one to be best.
struct TuningGoal {
  std::vector<Requirement> Requirements;
  const RunMeasure* Best = nullptr;

  /// Those that the run does not meet.
  std::vector<const Requirement*> Unmet(const RunReadings& readings) const;
  /// All requirements are met, and the measure that is to be best is there.
  bool Met(const RunReadings& readings) const;
};

/// A tuning that was tried.
struct Tuning {
  std::vector<std::string> Values;  ///< of each range, as the model took them
  RunReadings Readings;
};

/// What is searched, for what, and how a tuning is measured.
struct TuningSearch {
  std::vector<StudyRange> Ranges;
  TuningGoal Goal;
  int MostRuns = 200;
  /// Measures the model with such values, as a user would type them; a run that cannot be measured
  /// has readings without values, and the reasons.
  std::function<Tuning(const std::vector<std::string>& values)> Measure;
  /// Told after each run of how many were made and the best so far; false ends the search.
  std::function<bool(int runs, const Tuning& best)> GoOn;
};

/// Looks all over the ranges first (dividing rectangles), then about the best of what was found
/// (subplex), without derivatives. The same search finds the same tuning on every run; values have
/// four digits. Gives the best of all that were tried: when none meets the goal, the one that comes
/// nearest, by the sum of what it misses.
Tuning Tune(const TuningSearch& search);

}  // namespace torvane
