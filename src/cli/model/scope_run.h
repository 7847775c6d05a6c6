#pragma once

#include "cli/io/console.h"
#include "core/model.h"
#include "instruments/scope/scope.h"

namespace torvane::cli {

/// The model's first scope; a model without one is wrong usage.
ZelScope& FirstScope(const ZelBenchTop& bench);

/// Runs a new model with its instruments to the simulated time `until` and gives the last screen
/// that the scope completed. None is an error.
ScopeScreen LastCompleteScreen(ZelModel& model, ZelScope& scope, double until, Console& console,
                               bool showProgress);

}  // namespace torvane::cli
