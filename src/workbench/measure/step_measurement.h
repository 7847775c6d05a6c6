#pragma once

#include "workbench/measure/step_run.h"

namespace torvane {

/// Wrong usage if the model has no such signals.
void CheckStep(ZelModel& model, const StepOptions& options);

/// Reads a step in models of its own and gives its rows. An overflow is a WorkFault of
/// WorkFault::Kind::Stopped.
StepRun ReadStep(const MakeModel& make, const StepOptions& options, Supervisor& supervisor,
                 RunReadings& readings);

/// The response to the step with as many points as a picture shows.
void TakeTrace(const StepRun& run, StudyTrace& trace);

}  // namespace torvane
