#pragma once

#include <string>
#include <vector>

#include "drawing/nets.h"

namespace torvane::drawing {

/// The most places in a layout: of nodes and of lines that cross columns.
inline constexpr std::size_t MostPlaces = 4000;

/// The graph in Graphviz's language DOT: each node as a table of its size with a port a line, each
/// crossing of a column as a point, and edges from column to column. Node k is "n" and k, crossing
/// k "c" and k. `texts` puts the nodes' texts in, for readers; the layout needs none.
std::string DotText(const BlockGraph& graph, const Arrangement& arrangement,
                    const std::vector<Shape>& shapes, const std::vector<Net>& nets, bool texts);

}  // namespace torvane::drawing
