#include "plot/dashes.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace torvane {

QPen DashedPen(const QColor& colour, double width, const QVector<double>& dashes) {
  QPen pen(colour, width, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin);
  if (dashes.isEmpty()) return pen;
  QVector<double> widths;
  for (const double length : dashes) widths.append(length / width);
  pen.setDashPattern(widths);
  return pen;
}

QVector<QLineF> CutIntoDashes(const QVector<QLineF>& lines, const QVector<double>& dashes,
                              double& way) {
  const double period = std::accumulate(dashes.begin(), dashes.end(), 0.0);
  QVector<QLineF> pieces;
  for (const QLineF& line : lines) {
    const double length = line.length();
    if (length == 0.0) continue;  // two points on one pixel
    double at = -std::fmod(way, period);
    for (int k = 0; at < length; k = (k + 1) % static_cast<int>(dashes.size())) {
      const double end = at + dashes[k];
      if (k % 2 == 0 && end > 0.0) {
        pieces.append(QLineF(line.pointAt(std::max(at, 0.0) / length),
                             line.pointAt(std::min(end, length) / length)));
      }
      at = end;
    }
    way += length;
  }
  return pieces;
}

}  // namespace torvane
