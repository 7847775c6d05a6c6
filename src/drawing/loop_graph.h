#pragma once

#include "drawing/block_graph.h"
#include "loops/loop_plan.h"
#include "loops/syntax.h"

namespace torvane::drawing {

/// A checked loop as blocks and named signals, ready to be laid out: without what no signal that
/// instruments are offered depends on, with a node for each name that stands on a line and with the
/// constants told at the first block that needs them. Throws DrawingFault when it is too large.
BlockGraph GraphOf(const loops::ModelText& text, const loops::LoopPlan& plan);

}  // namespace torvane::drawing
