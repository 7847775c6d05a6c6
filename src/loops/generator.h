#pragma once

#include <utility>
#include <vector>

#include "loops/loop_plan.h"
#include "loops/node.h"

namespace torvane::loops {

/// Writes a plan's programs for nodes that are sorted: first those that depend on constants only,
/// then the others. What an evaluation need not compute anew is computed once a run or once a step.
/// `previous`: registers, and where their last values are kept.
void Generate(LoopPlan& plan, const std::vector<Node>& constants, const std::vector<Node>& nodes,
              const std::vector<std::pair<int, int>>& previous);

}  // namespace torvane::loops
