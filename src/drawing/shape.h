#pragma once

#include <vector>

#include "drawing/arrangement.h"
#include "drawing/block_graph.h"

namespace torvane::drawing {

/// Where a line meets a node's frame: on its left or right edge, Y from its top.
struct Pin {
  /// From the frame's edge it goes straight on to the sign, or to below or above the sign's place
  /// at X and then into it.
  enum class Way { Straight, FromBelow, FromAbove };
  int Node = -1;
  int Index = -1;  ///< of the node's inputs, or of its outputs
  bool Source = false;
  bool AtRight = false;
  int Y = 0;
  Way How = Way::Straight;
  int X = 0;
};

/// A node's room: its sign, and what its lines need around it.
struct Shape {
  int Width = 0;
  int Height = 0;
  int Top = 0;     ///< of the sign within it
  int Bottom = 0;  ///< of the sign
  int Axis = 0;    ///< of the line that goes straight through
  std::vector<Pin> Pins;
};

// Sizes in units of the drawing.
inline constexpr int SumRadius = 19;
inline constexpr int LineHeight = 25;  ///< of a text in a block
inline constexpr int RemarkHeight = 22;
inline constexpr int SignWidth = 72;  ///< of a curve in a block
inline constexpr int SignHeight = 60;
inline constexpr int RoomWidth = 76;  ///< for a constant's value
inline constexpr int RoomHeight = 21;

/// The text of a block is the name of the only constant that has room there.
bool IsOneConstant(const Node& node);
/// Height of the block's sign or texts, without what stands below them.
int SignHeightOf(const Node& node);

/// Of each node.
std::vector<Shape> Shapes(const BlockGraph& graph, const Arrangement& arrangement);

}  // namespace torvane::drawing
