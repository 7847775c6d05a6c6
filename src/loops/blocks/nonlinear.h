#pragma once

#include <vector>

#include "loops/block_type.h"

namespace torvane::loops {

/// Limiter, DeadZone, Quantiser, SlewRateLimiter and Table under Torvane.Nonlinear, and
/// Torvane.Mechanics.Friction.
std::vector<BlockType> NonlinearBlockTypes();

}  // namespace torvane::loops
