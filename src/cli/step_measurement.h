#pragma once

#include <string>
#include <vector>

#include "cli/step_run.h"

namespace torvane::cli {

/// What came of a step.
struct MeasuredStep {
  std::vector<std::string> Fields;  ///< by caption; one that cannot be measured is empty
  std::string Reason;               ///< of an empty field; empty when there is none
  StepRun Run;
};

std::vector<std::string> StepCaptions();

/// Wrong usage if the model has no such signals.
void CheckStep(ZelModel& model, const StepOptions& options);

/// Measures in models of its own. An overflow is a CommandError of ExitCode::Stopped.
MeasuredStep MeasureStep(const MakeModel& make, const StepOptions& options, Console& console,
                         bool showProgress);

}  // namespace torvane::cli
