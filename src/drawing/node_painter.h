#pragma once

#include "drawing/placing.h"
#include "drawing/svg_writer.h"

namespace torvane::drawing {

/// Draws the sign and the texts of one node, without its lines.
class NodePainter {
 public:
  NodePainter(const BlockGraph& graph, const Shape& shape, const Node& node, Point at,
              bool backwards, SvgWriter& svg)
      : graph_(graph), shape_(shape), node_(node), at_(at), backwards_(backwards), svg_(svg) {}

  void Paint();

 private:
  void PaintCircle();
  void PaintLabel();
  void PaintBlock();
  void PaintFraction();
  void PaintTexts();
  void PaintCurve();
  void PaintSwitch();
  void PaintBelow();
  void PaintMarks();

  double Left() const { return at_.X; }
  double Top() const { return at_.Y + shape_.Top; }
  double Centre() const { return at_.X + shape_.Width / 2.0; }
  double Middle() const { return Top() + SignHeightOf(node_) / 2.0; }

  const BlockGraph& graph_;
  const Shape& shape_;
  const Node& node_;
  Point at_;
  bool backwards_;
  SvgWriter& svg_;
};

}  // namespace torvane::drawing
