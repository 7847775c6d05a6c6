#include "plot/trace_painter.h"

#include <QPaintEngine>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>

namespace torvane {

namespace {

constexpr double TraceWidth = 1.6;
constexpr double KeptWidth = 0.8;
constexpr double Reach = 4.0;  // above the area, beyond which nothing of a line shows
// Pixels along the lines of all traces that a frame has time for: smooth ones take some 45 ns a
// pixel, plain ones of one pixel's width 8 ns.
constexpr double SmoothInk = 150'000.0;
constexpr double PlainInk = 900'000.0;
constexpr int MarkIntervals = 20;  // along the X axis, with one mark each
constexpr double MarkHalfWidth = 4.0;
constexpr double MarkHeight = 6.0;
constexpr double MarkGap = 2.0;  // to the edge

// Half way to a grey that stands out from light and dark plates alike.
QColor Pale(const QColor& colour) {
  const auto part = [](int value) { return (value + 150) / 2; };
  return {part(colour.red()), part(colour.green()), part(colour.blue())};
}

}  // namespace

QRect TracePainter::Paint(const std::vector<TracePoint>& points, const QColor& colour,
                          EdgeMarks& marks) {
  PaintTrace(points, colour, TraceWidth);
  painter_.setPen(Qt::NoPen);
  painter_.setBrush(colour);
  PaintMarks(points, marks);
  return painted_;
}

void TracePainter::PaintKept(const std::vector<TracePoint>& points, const QColor& colour) {
  PaintTrace(points, Pale(colour), KeptWidth);
}

void TracePainter::PaintTrace(const std::vector<TracePoint>& points, const QColor& colour,
                              double width) {
  painted_ = QRect();
  width_ = width;
  painter_.setPen(QPen(colour, width_ * ratio_, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin));
  lines_.clear();
  PaintLines(points);
  PaintPixels(colour);
}

// A line is cut where it leaves the area's reach: smooth lines far outside cost as much as visible
// ones, and beyond the range of a short integer some devices draw nonsense.
void TracePainter::PaintLines(const std::vector<TracePoint>& points) {
  const int top = -Scaled(Reach);
  run_.clear();
  for (std::size_t i = 0; i < points.size(); ++i) {
    const TracePoint& point = points[i];
    const bool within = point.Y >= top;
    if (i > 0 && within != (points[i - 1].Y >= top)) {
      const TracePoint& last = points[i - 1];
      const double part = (top - 1.0 * last.Y) / (1.0 * point.Y - last.Y);
      run_.append(QPoint(last.X + static_cast<int>(std::lround((point.X - last.X) * part)), top));
      if (!within) EndRun();
    }
    if (within) run_.append(QPoint(point.X, point.Y));
  }
  EndRun();
}

void TracePainter::EndRun() {
  const int last = static_cast<int>(run_.size()) - 1;
  if (last > 0) {
    const int room = Scaled(width_) + 1;
    painted_ |= run_.boundingRect().adjusted(-room, -room, room, room);
    if (painter_.paintEngine()->type() != QPaintEngine::Raster) painter_.drawPolyline(run_);
    for (int i = 0; i < last; ++i) lines_.append(QLine(run_[i], run_[i + 1]));
  }
  run_.clear();
}

// On pixels lines are painted one by one: the smooth filling of a polyline's outline gets slower
// with the square of the number of its edges that share a row of pixels, and a trace that swings to
// and fro has hundreds.
void TracePainter::PaintPixels(const QColor& colour) {
  if (painter_.paintEngine()->type() != QPaintEngine::Raster) return;
  const double ink =
      std::accumulate(lines_.begin(), lines_.end(), 0.0, [](double sum, const QLine& line) {
        return sum + std::abs(line.dx()) + std::abs(line.dy());
      });
  const double share = ink * traces_;
  if (time_ == PaintTime::Unbounded || share <= SmoothInk) {
    painter_.drawLines(lines_);
    return;
  }
  const int width = std::max(1, static_cast<int>(width_ * ratio_));
  if (share * width > PlainInk) MergeLines(static_cast<int>(std::ceil(share * width / PlainInk)));
  painter_.setRenderHint(QPainter::Antialiasing, false);
  painter_.setPen(QPen(colour, width, Qt::SolidLine, Qt::FlatCap));
  painter_.drawLines(lines_);
  painter_.setRenderHint(QPainter::Antialiasing);
}

// Of so many lines each in a row only the range that they cover stays.
void TracePainter::MergeLines(int count) {
  QVector<QLine> ranges;
  for (int first = 0; first < lines_.size(); first += count) {
    int low = lines_[first].y1();
    int high = low;
    for (int i = first; i < std::min(first + count, static_cast<int>(lines_.size())); ++i) {
      low = std::min({low, lines_[i].y1(), lines_[i].y2()});
      high = std::max({high, lines_[i].y1(), lines_[i].y2()});
    }
    ranges.append(QLine(lines_[first].x1(), low, lines_[first].x1(), high));
  }
  lines_ = ranges;
}

void TracePainter::PaintMarks(const std::vector<TracePoint>& points, EdgeMarks& marks) {
  for (const TracePoint& point : points) {
    if (point.Beyond == 0) continue;
    int& marked = point.Beyond > 0 ? marks.Above : marks.Below;
    const int interval = point.X * MarkIntervals / std::max(1, area_.width());
    if (interval == marked) continue;
    marked = interval;
    PaintMark(point.X, point.Beyond > 0);
  }
}

void TracePainter::PaintMark(int x, bool above) {
  const int half = Scaled(MarkHalfWidth);
  const int centre = std::clamp(x, half, std::max(half, area_.width() - half));
  const int tip = above ? Scaled(MarkGap) : area_.height() - 1 - Scaled(MarkGap);
  const int base = above ? tip + Scaled(MarkHeight) : tip - Scaled(MarkHeight);
  const QPoint corners[] = {{centre, tip}, {centre - half, base}, {centre + half, base}};
  painter_.drawPolygon(corners, 3);
  painted_ |=
      QRect(QPoint(centre - half, std::min(tip, base)), QPoint(centre + half, std::max(tip, base)))
          .adjusted(-1, -1, 1, 1);
}

}  // namespace torvane
