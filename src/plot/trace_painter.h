#pragma once

#include <QLine>
#include <QPainter>
#include <QPolygon>
#include <QRect>
#include <QVector>
#include <vector>

namespace torvane {

/// A point of a trace on the paint area, in pixels.
struct TracePoint {
  int X = 0;
  int Y = 0;       ///< may lie far above the area
  int Beyond = 0;  ///< 1 for a value above the screen, -1 for one below it
};

/// How far along the X axis a trace has its marks at either edge.
struct EdgeMarks {
  int Above = -1;  ///< the last interval with a mark; -1 before the first
  int Below = -1;
};

/// How long painting may take: a live window's frame is due, a picture's file can wait.
enum class PaintTime { Frame, Unbounded };

/// Paints traces: lines through their points, and where a trace leaves the screen small arrows in
/// its colour at that edge, which say that it goes on.
///
/// On pixels a frame's time is bounded: traces that swing to and fro so much that smooth lines
/// would take too long are painted with plain ones, and beyond that as the ranges that they cover.
class TracePainter {
 public:
  /// Paints onto an area of the given size at the painter's origin; `ratio` of its pixels make one
  /// pixel of design. So many traces share the time.
  TracePainter(QPainter& painter, const QSize& area, double ratio, std::size_t traces,
               PaintTime time)
      : painter_(painter),
        area_(area),
        ratio_(ratio),
        traces_(static_cast<double>(traces)),
        time_(time) {}

  /// Lines from the first point to the last, and the marks that are due. Gives the rectangle
  /// painted in.
  QRect Paint(const std::vector<TracePoint>& points, const QColor& colour, EdgeMarks& marks);
  /// A trace kept for comparison: a thin, pale line without marks.
  void PaintKept(const std::vector<TracePoint>& points, const QColor& colour);

 private:
  void PaintTrace(const std::vector<TracePoint>& points, const QColor& colour, double width);
  void PaintLines(const std::vector<TracePoint>& points);
  void EndRun();
  void PaintPixels(const QColor& colour);
  void MergeLines(int count);
  void PaintMarks(const std::vector<TracePoint>& points, EdgeMarks& marks);
  void PaintMark(int x, bool above);
  int Scaled(double length) const { return qRound(length * ratio_); }

  QPainter& painter_;
  QSize area_;
  double ratio_;
  double traces_;
  PaintTime time_;
  double width_ = 0.0;  // of the trace being painted, pixels of design
  QPolygon run_;        // of points that lie within reach of the area
  QVector<QLine> lines_;
  QRect painted_;
};

}  // namespace torvane
