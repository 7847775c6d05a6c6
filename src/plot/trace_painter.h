#pragma once

#include <QLine>
#include <QPainter>
#include <QPolygon>
#include <QRect>
#include <QVector>
#include <vector>

#include "plot/touched_area.h"

namespace torvane {

/// Pixels along the lines of all traces that a frame has time for: smooth ones take some 45 ns
/// each.
inline constexpr double SmoothInk = 130'000.0;

/// A point of a trace on the paint area, in pixels.
struct TracePoint {
  int X = 0;
  int Y = 0;       ///< may lie far above the area
  int Beyond = 0;  ///< 1 for a value above the screen, -1 for one below it

  bool operator==(const TracePoint&) const = default;
};

/// How far a trace has been painted.
struct TraceTrail {
  // Along the X axis, the last interval with a mark at either edge; -1 before the first.
  int Above = -1;
  int Below = -1;
  double Length = 0.0;  ///< of its line
};

/// A trace's pen: colour, and lengths of dash and gap in turn, in pixels of design; none is a solid
/// line.
struct TracePen {
  QColor Colour;
  QVector<double> Dashes;
};

/// The line pattern of the trace with that colour index.
const QVector<double>& TracePattern(int index);

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
  /// pixel of design. So many traces share the time. What is painted on is added to `touched`.
  TracePainter(QPainter& painter, const QSize& area, double ratio, std::size_t traces,
               PaintTime time, TouchedArea& touched)
      : painter_(painter),
        area_(area),
        ratio_(ratio),
        traces_(static_cast<double>(traces)),
        time_(time),
        touched_(touched) {}

  /// Lines from the given point to the last, and the marks that are due.
  void Paint(const std::vector<TracePoint>& points, std::size_t first, const TracePen& pen,
             TraceTrail& trail);
  /// A trace kept for comparison: a thin, pale line without marks.
  void PaintKept(const std::vector<TracePoint>& points, const TracePen& pen);

 private:
  void PaintLine(const std::vector<TracePoint>& points, std::size_t first, const TracePen& pen,
                 double width, TraceTrail& trail);
  void PaintLines(const std::vector<TracePoint>& points, std::size_t first);
  void EndRun();
  void PaintPixels(const TracePen& pen, TraceTrail& trail);
  QVector<double> InPixels(const QVector<double>& dashes) const;
  QVector<QLineF> Dashed(const QVector<double>& dashes, TraceTrail& trail) const;
  void MergeLines(int count);
  void PaintMarks(const std::vector<TracePoint>& points, std::size_t first, TraceTrail& trail);
  void PaintMark(int x, bool above);
  bool OnPixels() const;
  int Scaled(double length) const { return qRound(length * ratio_); }

  QPainter& painter_;
  QSize area_;
  double ratio_;
  double traces_;
  PaintTime time_;
  double width_ = 0.0;  // of the trace being painted, pixels of design
  QPolygon run_;        // of points that lie within reach of the area
  QVector<QLine> lines_;
  TouchedArea& touched_;
};

}  // namespace torvane
