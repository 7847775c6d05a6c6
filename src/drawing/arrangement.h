#pragma once

#include <vector>

#include "drawing/block_graph.h"

namespace torvane::drawing {

/// In which column each node stands and which way it looks. Signals flow from the command at the
/// left to the right, feedback goes back below: blocks that do nothing but feed back look to the
/// left.
struct Arrangement {
  std::vector<int> Columns;     ///< of each node, from 0
  std::vector<bool> Backwards;  ///< of each node: from right to left
  std::vector<bool> Main;       ///< it is on the straight way from the command
  std::vector<bool> Outside;    ///< nothing in it comes from the command
  std::vector<int> Order;       ///< position of each node in the signals' flow

  /// Whether the signal comes to the node from the side at which its inputs are.
  bool IsAhead(const BlockGraph& graph, int node, int from) const;
};

Arrangement Arrange(const BlockGraph& graph);

}  // namespace torvane::drawing
