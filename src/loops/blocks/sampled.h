#pragma once

#include <vector>

#include "loops/block_type.h"

namespace torvane::loops {

/// The sampled filters and controllers of the library, UnitDelay and ZeroOrderHold, under
/// Torvane.Discrete.
std::vector<BlockType> SampledBlockTypes();

}  // namespace torvane::loops
