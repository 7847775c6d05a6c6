#include "plot/curve_painter.h"

#include <QPaintEngine>
#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

#include "plot/dashes.h"

namespace torvane {

namespace {

constexpr double Unseen = 0.15;     // pixels that a curve may be off
constexpr double PeakHeight = 6.0;  // of a column, in widths of the line

}  // namespace

CurvePainter::CurvePainter(QPainter& painter, const QRect& clip, TracePen pen, double width,
                           double ratio, int curves)
    : painter_(painter), near_(clip), pen_(std::move(pen)), width_(width * ratio), curves_(curves) {
  near_.adjust(-width_, -width_, width_, width_);
  for (double& length : pen_.Dashes) length *= ratio;
}

bool CurvePainter::OnPixels() const {
  return painter_.paintEngine()->type() == QPaintEngine::Raster;
}

// On pixels line by line: the smooth filling of a polyline's outline gets slower with the square of
// the number of its edges that share a row of pixels.
void CurvePainter::PaintLines(const std::vector<QPolygonF>& lines) {
  if (!OnPixels()) {
    painter_.setPen(DashedPen(pen_.Colour, width_, pen_.Dashes));
    for (const QPolygonF& line : lines) painter_.drawPolyline(line);
    return;
  }
  pieces_.clear();
  for (const QPolygonF& line : lines) AddPieces(line);
  const double ink =
      std::accumulate(pieces_.begin(), pieces_.end(), 0.0, [](double sum, const QLineF& line) {
        return sum + std::abs(line.dx()) + std::abs(line.dy());
      });
  const bool smooth = ink * curves_ <= SmoothInk;
  painter_.setPen(DashedPen(pen_.Colour, smooth ? width_ : std::max(1.0, std::floor(width_)), {}));
  painter_.setRenderHint(QPainter::Antialiasing, smooth);
  painter_.drawLines(pieces_);
  painter_.setRenderHint(QPainter::Antialiasing);
}

void CurvePainter::AddPieces(const QPolygonF& line) {
  QVector<QLineF> visible;
  for (qsizetype i = 1; i < line.size(); ++i) {
    const QPointF& from = line[i - 1];
    const QPointF& to = line[i];
    const bool outside =
        std::max(from.y(), to.y()) < near_.top() || std::min(from.y(), to.y()) > near_.bottom() ||
        std::max(from.x(), to.x()) < near_.left() || std::min(from.x(), to.x()) > near_.right();
    if (!outside) visible.append(QLineF(from, to));
  }
  double way = 0.0;
  pieces_.append(pen_.Dashes.isEmpty() ? visible : CutIntoDashes(visible, pen_.Dashes, way));
}

bool CurvePainter::InGap(double way) const {
  if (pen_.Dashes.isEmpty()) return false;
  double rest = std::fmod(way, std::accumulate(pen_.Dashes.begin(), pen_.Dashes.end(), 0.0));
  for (int k = 0; k < pen_.Dashes.size(); ++k) {
    rest -= pen_.Dashes[k];
    if (rest < 0.0) return k % 2 == 1;
  }
  return false;
}

void CurvePainter::PaintColumns(const std::vector<Column>& columns, const QColor& colour) {
  painter_.setRenderHint(QPainter::Antialiasing, false);
  for (Column column : columns) {
    if (column.Bottom - column.Top < PeakHeight * width_ && InGap(column.X)) continue;
    column.Top = std::max(column.Top, near_.top());
    column.Bottom = std::min(column.Bottom, near_.bottom());
    if (column.Top >= column.Bottom) continue;
    if (OnPixels()) {
      PaintPixels(column, colour);
    } else {
      painter_.fillRect(QRectF(column.X, column.Top, 1.0, column.Bottom - column.Top), colour);
    }
  }
  painter_.setRenderHint(QPainter::Antialiasing);
}

// Whole pixels fill many times faster than parts of them, of which a column has two.
void CurvePainter::PaintPixels(const Column& column, const QColor& colour) {
  const int first = static_cast<int>(std::ceil(column.Top));
  const int end = static_cast<int>(std::floor(column.Bottom));
  const auto part = [&](int y, double share) {
    QColor faint = colour;
    faint.setAlphaF(static_cast<float>(colour.alphaF() * share));
    painter_.fillRect(QRect(column.X, y, 1, 1), faint);
  };
  if (end > first) painter_.fillRect(QRect(column.X, first, 1, end - first), colour);
  part(first - 1, first - column.Top);
  part(end, column.Bottom - end);
}

// From the last point that is kept, the directions that pass all points since within what is not
// seen.
QPolygonF Simplified(const QPolygonF& line) {
  if (line.size() < 3) return line;
  constexpr double All = std::numeric_limits<double>::infinity();
  QPolygonF kept{line.front()};
  double low = -All;
  double high = All;
  for (qsizetype i = 1; i < line.size(); ++i) {
    const auto direction = [&](double off) {
      const double across = line[i].x() - kept.back().x();
      return across > 0.0 ? (line[i].y() + off - kept.back().y()) / across : All;
    };
    const double straight = direction(0.0);
    if (!(straight >= low && straight <= high) || straight == All) {
      if (kept.back() != line[i - 1]) kept << line[i - 1];
      low = -All;
      high = All;
    }
    low = std::max(low, direction(-Unseen));
    high = std::min(high, direction(Unseen));
  }
  kept << line.back();
  return kept;
}

}  // namespace torvane
