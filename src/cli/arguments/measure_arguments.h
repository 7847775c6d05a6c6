#pragma once

#include "workbench/measure/measurement.h"

namespace CLI {
class App;
}

namespace torvane::cli {

/// All but MODEL.
void AddMeasureOptions(CLI::App& command, MeasureOptions& options);

}  // namespace torvane::cli
