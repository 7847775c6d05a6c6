#pragma once

#include "drawing/block_graph.h"
#include "drawing/loop_names.h"
#include "loops/block_type.h"

namespace torvane::drawing {

/// The node of a library's block without its wires: its sign or its type's name, what it is called
/// in the loop, its parameters where they are no names of constants.
Node NodeOf(const loops::Component& block, const loops::BlockType& type, const LoopNames& names);

/// A source's.
Node SourceNode(const loops::Component& source);

}  // namespace torvane::drawing
