#include "plot/response/plane_axes.h"

#include <cmath>

namespace torvane {

namespace {

// None so far out that a double does not tell one from the next.
std::vector<double> Multiples(double scale, double middle, double reach) {
  constexpr double Rounding = 1e-9;  // of a division; a line may stand at the very edge
  constexpr double Farthest = 1e15;  // divisions
  if (!(std::abs(middle) < Farthest * scale)) return {};
  const double first = std::ceil((middle - reach) / scale - Rounding);
  const double last = std::floor((middle + reach) / scale + Rounding);
  std::vector<double> lines;
  for (double k = first; k <= last; k += 1.0) lines.push_back(k * scale);
  return lines;
}

}  // namespace

QPointF PlaneAxes::PlaceOf(const QPointF& value) const {
  return QRectF(Plate).center() + QPointF((value.x() - Centre.x()) / Scale.x() * Division.x(),
                                          (Centre.y() - value.y()) / Scale.y() * Division.y());
}

QPointF PlaneAxes::ValueAt(const QPointF& place) const {
  const QPointF off = place - QRectF(Plate).center();
  return {Centre.x() + off.x() / Division.x() * Scale.x(),
          Centre.y() - off.y() / Division.y() * Scale.y()};
}

std::vector<double> PlaneAxes::LinesAcross() const {
  return Multiples(Scale.x(), Centre.x(), Plate.width() / 2.0 / Division.x() * Scale.x());
}

std::vector<double> PlaneAxes::LinesUpwards() const {
  return Multiples(Scale.y(), Centre.y(), Plate.height() / 2.0 / Division.y() * Scale.y());
}

}  // namespace torvane
