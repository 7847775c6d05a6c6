#pragma once

#include <QByteArray>
#include <string>

namespace torvane {

class ZelModel;

/// A drawing as SVG on a light ground, or why there is none.
struct DrawnModel {
  QByteArray Svg;
  std::string Fault;
};

/// The drawing that the program has of a built-in model; neither drawing nor fault for another one.
DrawnModel BuiltInDrawing(const ZelModel& model);

/// An own loop's diagram, made from its equations; neither drawing nor fault for another model. The
/// layout takes Graphviz, a program of its own, some hundredths of a second; it is stopped after
/// five seconds.
DrawnModel LoopDiagram(const ZelModel& model);

}  // namespace torvane
