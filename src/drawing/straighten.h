#pragma once

#include "drawing/placing.h"

namespace torvane::drawing {

/// Lets a line that comes to a sign from below or above go as far as below or above it on its own
/// height, where nothing stands in its way: moves the pins of the nets.
void Straighten(const Arrangement& arrangement, const std::vector<Shape>& shapes,
                const Heights& heights, std::vector<Net>& nets);

}  // namespace torvane::drawing
