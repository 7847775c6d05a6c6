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

}  // namespace torvane
