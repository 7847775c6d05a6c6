#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "drawing/nets.h"

namespace torvane::drawing {

inline constexpr int Clear = 8;  ///< between a line and what it passes

/// Heights that a layout gives, in units of the drawing from its top.
struct Heights {
  std::vector<int> Nodes;      ///< of their frames' tops
  std::vector<int> Crossings;  ///< in the order of Crossings()
};

/// Reads what Graphviz writes as "plain" of the text that DotText made; nothing when it is not
/// that.
std::optional<Heights> ReadPlain(std::string_view plain, const std::vector<Shape>& shapes,
                                 std::size_t crossings);

struct Point {
  int X = 0;
  int Y = 0;
  bool operator==(const Point&) const = default;
};

struct Segment {
  Point From;
  Point To;
};

/// A net's lines as they are drawn.
struct Route {
  int Net = -1;
  std::vector<Segment> Segments;
  std::vector<Segment> Arrows;  ///< the last piece of a line, with its head at To
  std::vector<Point> Dots;      ///< where lines branch
};

/// Where everything stands.
struct Placing {
  std::vector<Point> Nodes;  ///< the frames' top left corners
  std::vector<Route> Routes;
  int Width = 0;
  int Height = 0;
};

Placing Place(const BlockGraph& graph, const Arrangement& arrangement,
              const std::vector<Shape>& shapes, const std::vector<Net>& nets, Heights heights);

}  // namespace torvane::drawing
