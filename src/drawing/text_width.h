#pragma once

#include "drawing/block_graph.h"

namespace torvane::drawing {

// Sizes of texts, in units of the drawing.
inline constexpr int TextSize = 20;    ///< in blocks and on lines
inline constexpr int RemarkSize = 16;  ///< below them

/// How wide a text is in DejaVu Sans; the names of constants and signals are bold.
double WidthOf(const Line& line, int size);

}  // namespace torvane::drawing
