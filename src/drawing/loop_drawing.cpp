#include "drawing/loop_drawing.h"

#include "drawing/dot_text.h"
#include "drawing/loop_graph.h"
#include "drawing/svg_text.h"
#include "loops/own_loops.h"
#include "loops/parser.h"

namespace torvane::drawing {

namespace {

BlockGraph Read(std::string_view text) {
  const loops::LoopReading reading = loops::ReadLoop(text);
  if (!reading.Plan) throw DrawingFault("a loop whose text has errors has no drawing");
  loops::ProblemList problems;
  return GraphOf(loops::Parse(text, problems), *reading.Plan);
}

}  // namespace

LoopDrawing::LoopDrawing(std::string_view text)
    : graph_(Read(text)),
      arrangement_(Arrange(graph_)),
      shapes_(Shapes(graph_, arrangement_)),
      nets_(Nets(graph_, arrangement_, shapes_)) {}

std::string LoopDrawing::DotText() const {
  return drawing::DotText(graph_, arrangement_, shapes_, nets_, true);
}

std::string LoopDrawing::BareDotText() const {
  return drawing::DotText(graph_, arrangement_, shapes_, nets_, false);
}

std::string LoopDrawing::Svg(std::string_view plain) const {
  auto heights = ReadPlain(plain, shapes_, Crossings(nets_).size());
  if (!heights) throw DrawingFault("Graphviz has not written the layout that was asked for");
  return SvgText(graph_, arrangement_, shapes_,
                 Place(graph_, arrangement_, shapes_, nets_, std::move(*heights)));
}

}  // namespace torvane::drawing
