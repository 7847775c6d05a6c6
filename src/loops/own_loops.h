#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/model.h"
#include "loops/loop_plan.h"
#include "loops/problems.h"

namespace torvane::loops {

/// What has come of reading a loop's text.
struct LoopReading {
  /// nullptr when something is wrong with it.
  std::shared_ptr<const LoopPlan> Plan;
  std::vector<Problem> Problems;
};

/// Reads a loop's text whatever its bytes are. It is a file of one Modelica model in a subset that
/// docs/own-loops.md describes. It cannot have the name of a built-in model, which comes first.
LoopReading ReadLoop(std::string_view text, const std::vector<std::string>& builtIns = {});

/// Builds the model.
std::unique_ptr<ZelModel> MakeLoop(const std::string& name, std::shared_ptr<const LoopPlan> plan);

}  // namespace torvane::loops
