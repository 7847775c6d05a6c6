#include "cli/io/diagrams.h"

#include "drawing/loop_drawing.h"
#include "loops/own_loop.h"
#include "workbench/work_fault.h"

#ifdef TORVANE_PICTURES
#include "plot/diagram/loop_diagram.h"
#include "plot/diagram/loop_layout.h"
#endif

namespace torvane::cli {

#ifdef TORVANE_PICTURES
std::string DiagramOf(const ZelModel& model) {
  DrawnModel drawn = LoopDiagram(model);
  if (!drawn.Fault.empty()) throw StoppedError(drawn.Fault);
  if (drawn.Svg.isEmpty()) drawn = BuiltInDrawing(model);
  return drawn.Svg.toStdString();
}
#else
std::string DiagramOf(const ZelModel&) {
  throw UsageError("this torvane-cli was built without pictures; --format dot can be had");
}
#endif

std::string DotOf(const ZelModel& model) {
  const auto* const loop = dynamic_cast<const loops::OwnLoop*>(&model);
  if (!loop) {
    throw UsageError(
        "--format dot is for loops of your own; a built-in model has its drawing as svg alone");
  }
  try {
    return drawing::LoopDrawing(loop->Text()).DotText();
  } catch (const drawing::DrawingFault& fault) {
    throw StoppedError(fault.what());
  }
}

}  // namespace torvane::cli
