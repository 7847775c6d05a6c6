#pragma once

#include <string>

#include "study/run.h"

namespace torvane {

/// Reads from theory what ReadLoop measures: bandwidth and peaking of the response to the command,
/// margins and sensitivity of the model's own loop, each of a model of its own. What there is none
/// of has its reason among the readings.
void ReadTheory(const MakeModel& make, const std::string& command, const std::string& response,
                RunReadings& readings);

/// A WorkFault of WorkFault::Kind::Stopped for a model that theory can say nothing of, or, if they
/// are asked for, nothing of its margins.
void CheckTheory(const MakeModel& make, bool margins);

}  // namespace torvane
