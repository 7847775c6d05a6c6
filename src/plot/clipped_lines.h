#pragma once

#include <QPolygonF>
#include <QRectF>
#include <vector>

namespace torvane {

/// The parts of a line that lie within a rectangle.
std::vector<QPolygonF> ClippedLine(const QPolygonF& line, const QRectF& within);

}  // namespace torvane
