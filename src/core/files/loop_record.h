#pragma once

#include <string>
#include <string_view>

#include "core/model.h"

namespace torvane {

// A model file of an own loop says in which file the loop was: "Loop,PATH", a path that may have
// commas. A model is an own loop when the file that describes it is a loop's.

/// What a loop's files end in.
inline constexpr std::string_view LoopEnding = ".mo";

/// The record, line end included; empty for any other model.
std::string LoopRecord(const ZelModel& model);

/// The path in a model file's text; empty when there is none.
std::string LoopFileIn(std::string_view text);

}  // namespace torvane
