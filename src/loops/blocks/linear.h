#pragma once

#include <vector>

#include "loops/block_type.h"

namespace torvane::loops {

/// TransferFunction, StateSpace and ZerosAndPoles under Torvane.Continuous and Torvane.Discrete.
std::vector<BlockType> LinearBlockTypes();

}  // namespace torvane::loops
