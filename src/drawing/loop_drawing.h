#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "drawing/placing.h"

namespace torvane::drawing {

/// A loop's block diagram, made from its equations. Graphviz lays it out in between: it is given
/// DotText() and its answer in the format "plain" to Svg().
class LoopDrawing {
 public:
  /// Of a loop's text. Throws DrawingFault when that has errors or is too large.
  explicit LoopDrawing(std::string_view text);

  const BlockGraph& Graph() const { return graph_; }
  const drawing::Arrangement& Arrangement() const { return arrangement_; }

  /// In Graphviz's language DOT, with what stands in the blocks for readers.
  std::string DotText() const;
  /// The same without what the layout does not need.
  std::string BareDotText() const;
  /// The drawing in the layout that Graphviz has written; throws DrawingFault when that is none.
  std::string Svg(std::string_view plain) const;

 private:
  BlockGraph graph_;
  drawing::Arrangement arrangement_;
  std::vector<Shape> shapes_;
  std::vector<Net> nets_;
};

}  // namespace torvane::drawing
