#pragma once

#include <functional>
#include <memory>

#include "core/model.h"
#include "study/design.h"
#include "study/measures.h"
#include "study/row.h"

namespace torvane {

/// Builds a model with its settings.
using MakeModel = std::function<std::unique_ptr<ZelModel>()>;

/// A model as a process builds it that has run nothing else, whatever ran in this one: its class
/// remembers nothing.
std::unique_ptr<ZelModel> MakeFirst(const MakeModel& make);

/// Measures a model, as often as it has to build it; fills the trace if there is one to fill. What
/// it throws is the reason why there are no measures.
using MeasureModel = std::function<RunReadings(const MakeModel& make, StudyTrace* trace)>;

/// A run of a study: the model with the run's settings, measured. `set`: which measures its row
/// has; `traced`: the response is wanted as well.
RunResult RunOfStudy(const StudyDesign& design, std::size_t run, const MakeModel& make,
                     const MeasureModel& measure, const MeasureSet& set, bool traced);

}  // namespace torvane
