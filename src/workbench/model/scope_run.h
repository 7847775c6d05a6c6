#pragma once

#include "core/model.h"
#include "instruments/scope/scope.h"
#include "workbench/supervisor.h"

namespace torvane {

/// The model's first scope; a model without one is wrong usage.
ZelScope& FirstScope(const ZelBenchTop& bench);

/// Runs a new model with its instruments to the simulated time `until` and gives the last screen
/// that the scope completed. None is an error.
ScopeScreen LastCompleteScreen(ZelModel& model, ZelScope& scope, double until,
                               Supervisor& supervisor);

}  // namespace torvane
