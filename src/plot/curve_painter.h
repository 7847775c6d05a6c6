#pragma once

#include <QPainter>
#include <QPolygonF>
#include <QVector>

#include "plot/trace_painter.h"

namespace torvane {

/// Paints curves that are known to a fraction of a pixel, and columns of pixels that a curve fills.
///
/// On pixels a curve that swings to and fro so much that smooth lines would take too long is
/// painted with plain ones.
class CurvePainter {
 public:
  /// `ratio` of the painter's pixels make one pixel of design, in which the pen is. So many curves
  /// share the time of a frame. What lies outside the clip is left out.
  CurvePainter(QPainter& painter, const QRect& clip, TracePen pen, double width, double ratio,
               int curves);

  void PaintLines(const std::vector<QPolygonF>& lines);
  /// A column of pixels, from the top of the curve's stroke to its bottom.
  struct Column {
    int X = 0;
    double Top = 0.0;
    double Bottom = 0.0;
  };
  /// Where the curve's values fill columns. A gap of the pen's pattern hides no peak.
  void PaintColumns(const std::vector<Column>& columns, const QColor& colour);

 private:
  void AddPieces(const QPolygonF& line);
  void PaintPixels(const Column& column, const QColor& colour);
  bool OnPixels() const;
  bool InGap(double way) const;

  QPainter& painter_;
  QRectF near_;
  TracePen pen_;
  double width_;
  int curves_;
  QVector<QLineF> pieces_;
};

/// The line without the points that lie within a fraction of a pixel of what is left. X grows from
/// point to point.
QPolygonF Simplified(const QPolygonF& line);

}  // namespace torvane
