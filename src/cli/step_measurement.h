#pragma once

#include <string>
#include <vector>

#include "cli/console.h"
#include "cli/make_model.h"
#include "instruments/scope/scope.h"

namespace torvane::cli {

/// How a signal follows a step of another is measured of a run.
struct StepOptions {
  std::string Command;
  std::string Response;
  double Until = 0.0;
};

/// What came of it.
struct MeasuredStep {
  std::vector<std::string> Fields;  ///< by caption; one that cannot be measured is empty
  ScopeScreen Screen;               ///< that the step was measured on
};

std::vector<std::string> StepCaptions();

/// Wrong usage if the model has no scope or no such signals.
void CheckStep(ZelModel& model, const StepOptions& options);

/// Measures in a model of its own. An overflow or a screen that is not whole is a CommandError of
/// ExitCode::Stopped.
MeasuredStep MeasureStep(const MakeModel& make, const StepOptions& options, Console& console,
                         bool showProgress);

}  // namespace torvane::cli
