#pragma once

#include <QLineF>
#include <QPen>
#include <QVector>

namespace torvane {

/// A pen with lengths of dash and gap in turn, in pixels; none is a solid line.
QPen DashedPen(const QColor& colour, double width, const QVector<double>& dashes);

/// Cuts lines that follow each other into dashes: lengths of dash and gap in turn, in pixels. The
/// pattern begins `way` pixels on, which is moved to where the lines end.
QVector<QLineF> CutIntoDashes(const QVector<QLineF>& lines, const QVector<double>& dashes,
                              double& way);

}  // namespace torvane
