#pragma once

#include <QPainter>
#include <QRect>
#include <string>
#include <vector>

#include "plot/scope_colours.h"

namespace torvane {

/// An axis of plain numbers, linear or logarithmic.
class NumberAxis {
 public:
  NumberAxis() = default;
  /// An empty range is widened; a logarithmic axis has both ends above 0.
  NumberAxis(double low, double high, bool log = false);

  double Low() const { return low_; }
  double High() const { return high_; }
  /// Where a value stands between the ends, 0 to 1 on the axis.
  double ShareOf(double value) const;
  /// At most about so many round numbers within the range.
  std::vector<double> Ticks(int most) const;

 private:
  double low_ = 0.0;
  double high_ = 1.0;
  bool log_ = false;
};

/// A plot over two such axes: what surrounds the curves. Lengths as in ScopePainter.
struct NumberFrame {
  NumberAxis X;
  NumberAxis Y;
  std::string XCaption;
  std::string YCaption;
  std::string Title;

  /// Finds room for captions and numbers within an area; `right` is kept free on that side.
  void Layout(const QSize& size, double ratio, int right = 0);
  void Paint(QPainter& painter, const ScopeColours& colours, bool grid) const;
  QPointF At(double x, double y) const {
    return {Plate.left() + X.ShareOf(x) * Plate.width(),
            Plate.bottom() + 1 - Y.ShareOf(y) * Plate.height()};
  }

  QRect Plate{};  ///< of the curves
  int Width = 0;  ///< of all
  double Ratio = 1.0;
};

/// The smallest of 1, 2, 5 times a power of ten that is not below the number.
double RoundStep(double least);

/// Four significant digits.
QString TickText(double value);

}  // namespace torvane
