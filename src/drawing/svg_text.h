#pragma once

#include <string>

#include "drawing/placing.h"

namespace torvane::drawing {

/// The drawing, as the built-in models' are: elements "signal NAME" and "constant NAME" where there
/// is room for values, "signal NAME#1" and so on where a name stands, and "loop" around the loop
/// without title and legend.
std::string SvgText(const BlockGraph& graph, const Arrangement& arrangement,
                    const std::vector<Shape>& shapes, const Placing& placing);

}  // namespace torvane::drawing
