#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/model.h"
#include "workbench/supervisor.h"

namespace torvane {

/// The offered signals in the list, "A,B"; all of them for an empty one. Any other name is wrong
/// usage.
std::vector<Variable*> ListedSignals(const ZelBenchTop& bench, const std::string& list);

/// Runs the model to the simulated time `until`, seconds, and has a row taken at the present time
/// and then every so many seconds: each at the step nearest to its time, and none twice. No
/// instrument is asked or serviced: the rows alone decide where the solver pauses, and pausing
/// leaves the trajectory alone.
void RecordRows(ZelModel& model, double until, double every, Supervisor& supervisor,
                const std::function<void()>& takeRow);

}  // namespace torvane
