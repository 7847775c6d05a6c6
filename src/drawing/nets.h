#pragma once

#include <vector>

#include "drawing/shape.h"

namespace torvane::drawing {

/// A line with its branches, between columns: in each gap between two columns it has ends at the
/// gap's left and right edge, and where it crosses a column it has a place there.
struct Net {
  int Output = -1;
  std::vector<Pin> Pins;
  int FirstGap = 0;  ///< gap g lies between the columns g and g + 1
  int LastGap = 0;

  /// The gap that the pin looks into.
  static int GapOf(const Pin& pin, const Arrangement& arrangement) {
    return arrangement.Columns[static_cast<std::size_t>(pin.Node)] - (pin.AtRight ? 0 : 1);
  }
};

std::vector<Net> Nets(const BlockGraph& graph, const Arrangement& arrangement,
                      const std::vector<Shape>& shapes);

/// Where lines cross columns: the net and the column of each, in the order of their numbers in the
/// text for the layout.
struct Crossing {
  int Net;
  int Column;
};
std::vector<Crossing> Crossings(const std::vector<Net>& nets);

}  // namespace torvane::drawing
