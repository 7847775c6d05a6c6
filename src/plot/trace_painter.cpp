#include "plot/trace_painter.h"

#include <QPaintEngine>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numeric>

#include "instruments/scope/scope_channel.h"
#include "plot/dashes.h"

namespace torvane {

namespace {

constexpr double TraceWidth = 1.6;
constexpr double KeptWidth = 0.8;
constexpr double ReachAbove = 4.0;  // above the area, beyond which nothing of a line shows
// As SmoothInk, of plain lines of one pixel's width, which take 8 ns a pixel.
constexpr double PlainInk = 800'000.0;
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

const QVector<double>& TracePattern(int index) {
  static const std::array<QVector<double>, TraceColourCount> patterns = {
      QVector<double>{},   {10, 4},       {2, 4}, {10, 4, 2, 4}, {22, 4}, {5, 4},
      {10, 4, 2, 4, 2, 4}, {22, 4, 2, 4},
  };
  return patterns.at(static_cast<std::size_t>(index));
}

void TracePainter::Paint(const std::vector<TracePoint>& points, std::size_t first,
                         const TracePen& pen, TraceTrail& trail) {
  PaintLine(points, first, pen, TraceWidth, trail);
  painter_.setPen(Qt::NoPen);
  painter_.setBrush(pen.Colour);
  PaintMarks(points, first, trail);
}

void TracePainter::PaintKept(const std::vector<TracePoint>& points, const TracePen& pen) {
  TraceTrail trail;
  PaintLine(points, 0, {Pale(pen.Colour), pen.Dashes}, KeptWidth, trail);
}

void TracePainter::PaintLine(const std::vector<TracePoint>& points, std::size_t first,
                             const TracePen& pen, double width, TraceTrail& trail) {
  width_ = width;
  // On pixels the lines themselves are cut.
  painter_.setPen(DashedPen(pen.Colour, width_ * ratio_,
                            OnPixels() ? QVector<double>() : InPixels(pen.Dashes)));
  lines_.clear();
  PaintLines(points, first);
  if (OnPixels()) PaintPixels(pen, trail);
}

bool TracePainter::OnPixels() const {
  return painter_.paintEngine()->type() == QPaintEngine::Raster;
}

// A line is cut where it leaves the area's reach: smooth lines far outside cost as much as visible
// ones, and beyond the range of a short integer some devices draw nonsense.
void TracePainter::PaintLines(const std::vector<TracePoint>& points, std::size_t first) {
  const int top = -Scaled(ReachAbove);
  run_.clear();
  for (std::size_t i = first; i < points.size(); ++i) {
    const TracePoint& point = points[i];
    const bool within = point.Y >= top;
    if (i > first && within != (points[i - 1].Y >= top)) {
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
    if (!OnPixels()) painter_.drawPolyline(run_);
    for (int i = 0; i < last; ++i) {
      lines_.append(QLine(run_[i], run_[i + 1]));
      touched_.Add(QRect(QPoint(std::min(run_[i].x(), run_[i + 1].x()) - room,
                                std::min(run_[i].y(), run_[i + 1].y()) - room),
                         QPoint(std::max(run_[i].x(), run_[i + 1].x()) + room,
                                std::max(run_[i].y(), run_[i + 1].y()) + room)));
    }
  }
  run_.clear();
}

// On pixels lines are painted one by one: the smooth filling of a polyline's outline gets slower
// with the square of the number of its edges that share a row of pixels, and a trace that swings to
// and fro has hundreds.
void TracePainter::PaintPixels(const TracePen& pen, TraceTrail& trail) {
  const double ink =
      std::accumulate(lines_.begin(), lines_.end(), 0.0, [](double sum, const QLine& line) {
        return sum + std::abs(line.dx()) + std::abs(line.dy());
      });
  const double share = ink * traces_;
  if (time_ == PaintTime::Unbounded || share <= SmoothInk) {
    if (pen.Dashes.isEmpty()) {
      painter_.drawLines(lines_);
    } else {
      painter_.drawLines(Dashed(pen.Dashes, trail));
    }
    return;
  }
  const int width = std::max(1, static_cast<int>(width_ * ratio_));
  if (share * width > PlainInk) MergeLines(static_cast<int>(std::ceil(share * width / PlainInk)));
  painter_.setRenderHint(QPainter::Antialiasing, false);
  painter_.setPen(QPen(pen.Colour, width, Qt::SolidLine, Qt::FlatCap));
  painter_.drawLines(lines_);
  painter_.setRenderHint(QPainter::Antialiasing);
}

QVector<double> TracePainter::InPixels(const QVector<double>& dashes) const {
  QVector<double> lengths;
  for (const double length : dashes) lengths.append(length * ratio_);
  return lengths;
}

// The pattern goes on from where the trace was painted last.
QVector<QLineF> TracePainter::Dashed(const QVector<double>& dashes, TraceTrail& trail) const {
  return CutIntoDashes(QVector<QLineF>(lines_.begin(), lines_.end()), InPixels(dashes),
                       trail.Length);
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

void TracePainter::PaintMarks(const std::vector<TracePoint>& points, std::size_t first,
                              TraceTrail& trail) {
  for (std::size_t i = first; i < points.size(); ++i) {
    const TracePoint& point = points[i];
    if (point.Beyond == 0) continue;
    int& marked = point.Beyond > 0 ? trail.Above : trail.Below;
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
  touched_.Add(
      QRect(QPoint(centre - half, std::min(tip, base)), QPoint(centre + half, std::max(tip, base)))
          .adjusted(-1, -1, 1, 1));
}

}  // namespace torvane
