#pragma once

#include <QPointF>
#include <QRect>
#include <vector>

namespace torvane {

/// How the values of a plane stand on a plate: x to the right, y upwards, the same number of pixels
/// for each division of an axis.
struct PlaneAxes {
  QRect Plate;
  QPointF Centre;              ///< the value in the middle of the plate
  QPointF Scale{1.0, 1.0};     ///< of a division
  QPointF Division{1.0, 1.0};  ///< in pixels

  QPointF PlaceOf(const QPointF& value) const;
  QPointF ValueAt(const QPointF& place) const;

  /// Whole multiples of the scale on the plate.
  std::vector<double> LinesAcross() const;   ///< of x
  std::vector<double> LinesUpwards() const;  ///< of y
};

}  // namespace torvane
