#include "plot/response/plane_painter.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <utility>

#include "core/text.h"
#include "instruments/analyser/response_reading.h"
#include "plot/clipped_lines.h"
#include "plot/curve_painter.h"
#include "plot/number_axis.h"
#include "plot/picture_fonts.h"
#include "plot/plot_layout.h"
#include "plot/response/nichols_contours.h"
#include "plot/response/response_lines.h"

namespace torvane {

namespace {

constexpr int Divisions = 6;  // of gain and phase, as against frequency
// Scales that fit: the smaller shows the unit circle; an integrator's gain is endless, but the
// point -1 matters.
constexpr double LeastScale = 0.5;
constexpr double LargestScale = 1.0;
constexpr double LargestGain = 600.0;  // dB that are told apart
constexpr double CriticalSize = 5.0;
constexpr double CursorSize = 4.0;
constexpr double LeastStep = 0.8;  // pixels between points that are drawn
constexpr double Outside = 4.0;    // of the plate, where lines end, pixels
constexpr int ArcPieces = 360;

// As many digits as tell it from the next line of the grid.
QString LabelOf(double value, double scale) {
  const double places = value == 0.0 ? 0.0 : std::log10(std::abs(value) / scale);
  const int digits = std::clamp(static_cast<int>(places) + 2, 4, 15);
  return QString::fromStdString(FormatGeneral(value, digits, 1));
}

double Distance(const QPointF& a, const QPointF& b) {
  return std::hypot(a.x() - b.x(), a.y() - b.y());
}

}  // namespace

void PlanePainter::Layout(const QSize& size, double pixelRatio, const TraceLook& look) {
  size_ = size;
  look_ = look;
  ratio_ = pixelRatio;
  textFont_ = ScaledFont(QGuiApplication::font(), ratio_, 1.0);
  numberFont_ = NumberFont(ratio_);
  const QFontMetrics numbers(numberFont_);
  const QFontMetrics words(textFont_);
  const int gap = Scaled(LabelGap);
  const int left =
      Scaled(PlotMargin) + numbers.horizontalAdvance(QString(WidestValueLabel, u'0')) + gap;
  const int top = words.height() + 2 * gap;
  const int bottom =
      legend_.Layout(size, ratio_, textFont_, look_) + words.height() + numbers.height() + 2 * gap;
  plate_ = {left, top, std::max(SmallestPlate, size.width() - left - Scaled(2.0 * PlotMargin)),
            std::max(SmallestPlate, size.height() - bottom - top)};
  for (const int slot : PaintOrder) {
    points_[static_cast<std::size_t>(slot)] = ReadPoints(slot);
  }
  LayOutAxes();
  int widest = left;
  for (const Line& line : Lines(false)) {
    widest = std::max(widest, numbers.horizontalAdvance(line.Label) + Scaled(PlotMargin) + gap);
  }
  if (widest > left) {
    plate_.setLeft(std::min(widest, plate_.right() - SmallestPlate));
    LayOutAxes();
  }
  for (std::vector<Point>& points : points_) {
    for (Point& point : points) point.At = Place(point.Gain, point.Phase);
  }
}

void PlanePainter::LayOutAxes() {
  axes_.Plate = plate_;
  if (IsNyquist()) {
    const NyquistWindow& window = analyser_.Nyquist();
    const double scale = window.Scale > 0.0 ? window.Scale : FittingScale();
    const double division =
        static_cast<double>(std::min(plate_.width(), plate_.height())) / NyquistWindow::Divisions;
    axes_.Centre = {window.Real, window.Imaginary};
    axes_.Scale = {scale, scale};
    axes_.Division = {division, division};
  } else {
    axes_.Centre = {-analyser_.PhaseOffset(), -analyser_.GainOffset()};
    axes_.Scale = {analyser_.PhaseScale(), analyser_.GainScale()};
    axes_.Division = {1.0 * plate_.width() / Divisions, 1.0 * plate_.height() / Divisions};
  }
}

// Shows all that the traces reach, as far as the point -1 stays in sight.
double PlanePainter::FittingScale() const {
  double largest = 0.0;  // dB
  for (const std::vector<Point>& points : points_) {
    for (const Point& point : points) largest = std::max(largest, point.Gain);
  }
  const double reach = LeastScale * NyquistWindow::Divisions / 2;
  return std::pow(10.0, std::min(largest, LargestGain) / 20.0) <= reach ? LeastScale : LargestScale;
}

QPointF PlanePainter::Place(double gain, double phase) const {
  if (!IsNyquist()) return axes_.PlaceOf({phase, gain});
  const double length = std::pow(10.0, std::min(gain, LargestGain) / 20.0);
  const double angle = phase / DegreesPerRadian;
  return axes_.PlaceOf({length * std::cos(angle), length * std::sin(angle)});
}

QRectF PlanePainter::Near() const {
  return QRectF(plate_).adjusted(-Outside, -Outside, Outside, Outside);
}

// Those of a trace on the frequency axis; none of one that is not drawn.
std::vector<PlanePainter::Point> PlanePainter::ReadPoints(int slot) const {
  std::vector<Point> points;
  if (!ResponseLegend::IsDrawn(analyser_, slot)) return points;
  for (const ResponsePoint& point : analyser_.ShownResponse(slot).Curve()) {
    if (point.Hz < analyser_.FreqMin() || point.Hz > analyser_.FreqMax()) continue;
    if (point.Excited) points.push_back({point.Hz, point.Gain, point.Phase, {}});
  }
  return points;
}

const std::vector<PlanePainter::Point>& PlanePainter::PointsOf(int slot) const {
  return points_[static_cast<std::size_t>(slot)];
}

void PlanePainter::Paint(QPainter& painter, const ScopeColours& colours) const {
  painter.fillRect(QRect(QPoint(0, 0), size_), colours.Around);
  painter.fillRect(plate_, colours.Plate);
  PaintGrid(painter, colours);
  PaintCaptions(painter, colours);
  painter.save();
  painter.setClipRect(plate_);
  painter.setRenderHint(QPainter::Antialiasing);
  if (IsNyquist()) {
    PaintUnitCircle(painter, colours);
  } else {
    PaintContours(painter, colours);
  }
  for (const int slot : PaintOrder) {
    if (ResponseLegend::IsDrawn(analyser_, slot)) PaintTrace(painter, colours, slot);
  }
  PaintCriticalPoints(painter, colours);
  if (!IsNyquist()) PaintContourLabels(painter, colours);
  painter.restore();
  legend_.Paint(painter, colours);
}

// A line across the plate at a value of one of the axes, labelled outside.
void PlanePainter::PaintLine(QPainter& painter, const ScopeColours& colours, const Line& at) const {
  const QPointF place = axes_.PlaceOf({at.Value, at.Value});
  const int line = qRound(at.Vertical ? place.x() : place.y());
  painter.setPen(QPen(at.Value == 0.0 ? colours.Axis : colours.Grid, std::max(1, Scaled(1.0))));
  const QFontMetrics metrics(numberFont_);
  const int gap = Scaled(LabelGap);
  if (at.Vertical) {
    painter.drawLine(line, plate_.top(), line, plate_.bottom());
    const int width = metrics.horizontalAdvance(at.Label);
    painter.setPen(colours.Text);
    painter.drawText(QRect(line - width / 2, plate_.bottom() + gap, width, metrics.height()),
                     Qt::AlignCenter | Qt::TextDontClip, at.Label);
  } else {
    painter.drawLine(plate_.left(), line, plate_.right(), line);
    painter.setPen(colours.Text);
    painter.drawText(QRect(0, line - metrics.height() / 2, plate_.left() - gap, metrics.height()),
                     Qt::AlignRight | Qt::AlignVCenter, at.Label);
  }
}

// Where lines are close only some have a label, those of round values.
std::vector<PlanePainter::Line> PlanePainter::Lines(bool vertical) const {
  const double scale = vertical ? axes_.Scale.x() : axes_.Scale.y();
  const QFontMetrics metrics(numberFont_);
  std::vector<Line> lines;
  int room = vertical ? 0 : metrics.height();
  for (const double value : vertical ? axes_.LinesAcross() : axes_.LinesUpwards()) {
    lines.push_back({vertical, value, LabelOf(value, scale)});
    if (vertical) room = std::max(room, metrics.horizontalAdvance(lines.back().Label));
  }
  const double division = vertical ? axes_.Division.x() : axes_.Division.y();
  const double every = RoundStep(std::max(1.0, (room + Scaled(LabelGap)) / division));
  for (Line& line : lines) {
    if (std::fmod(std::round(line.Value / scale), every) != 0.0) line.Label.clear();
  }
  return lines;
}

void PlanePainter::PaintGrid(QPainter& painter, const ScopeColours& colours) const {
  painter.setFont(numberFont_);
  for (const bool vertical : {true, false}) {
    for (const Line& line : Lines(vertical)) PaintLine(painter, colours, line);
  }
  painter.setPen(QPen(colours.Axis, std::max(1, Scaled(1.0))));
  painter.drawRect(plate_.adjusted(0, 0, -1, -1));
}

void PlanePainter::PaintCaptions(QPainter& painter, const ScopeColours& colours) const {
  painter.setFont(textFont_);
  painter.setPen(colours.Text);
  const int gap = Scaled(LabelGap);
  const int height = QFontMetrics(textFont_).height();
  const QRect above(plate_.left(), plate_.top() - height - gap / 2, plate_.width(), height);
  const QRect below(plate_.left(), plate_.bottom() + gap + QFontMetrics(numberFont_).height(),
                    plate_.width(), height);
  painter.drawText(above, Qt::AlignLeft,
                   IsNyquist() ? QStringLiteral("Imaginary") : QStringLiteral("Gain (dB)"));
  painter.drawText(below, Qt::AlignCenter,
                   IsNyquist() ? QStringLiteral("Real") : QStringLiteral("Phase (deg)"));
}

// Of a circle that is far larger than the plate only the part in its direction.
void PlanePainter::PaintUnitCircle(QPainter& painter, const ScopeColours& colours) const {
  const QRectF near = Near();
  const QPointF origin = axes_.PlaceOf({0.0, 0.0});
  double from = -std::numbers::pi;
  double to = std::numbers::pi;
  if (!near.contains(origin)) {
    const auto angle = [&](const QPointF& at) {
      const QPointF way = at - origin;
      return std::atan2(-way.y(), way.x());
    };
    const double middle = angle(near.center());
    from = to = middle;
    for (const QPointF& corner :
         {near.topLeft(), near.topRight(), near.bottomLeft(), near.bottomRight()}) {
      const double off = std::remainder(angle(corner) - middle, 2.0 * std::numbers::pi);
      from = std::min(from, middle + off);
      to = std::max(to, middle + off);
    }
  }
  QPolygonF circle;
  for (int i = 0; i <= ArcPieces; ++i) {
    const double at = from + (to - from) * i / ArcPieces;
    circle << axes_.PlaceOf({std::cos(at), std::sin(at)});
  }
  CurvePainter(painter, plate_, {colours.Axis, {4.0, 2.0}}, 1.0, ratio_, 1)
      .PaintLines(ClippedLine(circle, near));
}

PlanePainter::Turns PlanePainter::TurnsOnPlate() const {
  const double middle = -analyser_.PhaseOffset();
  const double half = Divisions / 2 * analyser_.PhaseScale();
  constexpr double Most = 8.0;  // more are too fine to be seen
  constexpr double Farthest = 1e9;
  if (std::abs(middle) > Farthest) return {0, -1};
  return {static_cast<int>(std::floor(std::max(middle - half, middle - Most * 360.0) / 360.0)),
          static_cast<int>(std::floor(std::min(middle + half, middle + Most * 360.0) / 360.0))};
}

// They lie between -360 and 0 degrees, and again a turn further.
void PlanePainter::PaintContours(QPainter& painter, const ScopeColours& colours) const {
  const Turns turns = TurnsOnPlate();
  std::vector<QPolygonF> lines;
  for (const double closed : ContourGains) {
    const std::vector<OpenLoopPoint> contour = NicholsContour(closed);
    for (int turn = turns.First; turn <= turns.Last; ++turn) {
      QPolygonF line;
      for (const OpenLoopPoint& point : contour) {
        line << Place(point.Gain, point.Phase + 360.0 * (turn + 1));
      }
      for (QPolygonF& part : ClippedLine(line, Near())) lines.push_back(std::move(part));
    }
  }
  CurvePainter(painter, plate_, {colours.Axis, {2.0, 2.0}}, 1.0, ratio_, 1).PaintLines(lines);
}

void PlanePainter::PaintContourLabels(QPainter& painter, const ScopeColours& colours) const {
  painter.setFont(numberFont_);
  painter.setPen(colours.Text);
  const QFontMetrics metrics(numberFont_);
  const Turns turns = TurnsOnPlate();
  std::vector<QRectF> taken;
  for (const double closed : ContourGains) {
    const QString text = QString::fromStdString(FormatGeneral(closed, 4, 1) + " dB");
    const OpenLoopPoint place = ContourLabelPlace(closed);
    for (int turn = turns.First; turn <= turns.Last; ++turn) {
      const QPointF at = Place(place.Gain, place.Phase + 360.0 * (turn + 1));
      const QRectF room(at.x() + Scaled(2.0), at.y() - metrics.height(),
                        metrics.horizontalAdvance(text), metrics.height());
      const bool free = QRectF(plate_).contains(room) &&
                        std::none_of(taken.begin(), taken.end(),
                                     [&](const QRectF& other) { return other.intersects(room); });
      if (!free) continue;
      taken.push_back(room);
      painter.drawText(room, Qt::AlignCenter | Qt::TextDontClip, text);
    }
  }
}

void PlanePainter::PaintCriticalPoints(QPainter& painter, const ScopeColours& colours) const {
  painter.setPen(QPen(colours.Text, 1.6 * ratio_));
  painter.setFont(numberFont_);
  const double r = CriticalSize * ratio_;
  const Turns turns = IsNyquist() ? Turns{0, 0} : TurnsOnPlate();
  for (int turn = turns.First; turn <= turns.Last; ++turn) {
    const QPointF at = Place(0.0, 180.0 + 360.0 * turn);
    if (!Near().contains(at)) continue;
    painter.drawLine(at - QPointF(r, 0.0), at + QPointF(r, 0.0));
    painter.drawLine(at - QPointF(0.0, r), at + QPointF(0.0, r));
    if (IsNyquist()) {
      painter.drawText(
          at + QPointF(-QFontMetrics(numberFont_).horizontalAdvance(u'0') * 2.0 - r, -r),
          QStringLiteral("-1"));
    }
  }
}

// Straight from point to point, except across a wrap of the phase.
void PlanePainter::PaintTrace(QPainter& painter, const ScopeColours& colours, int slot) const {
  const std::vector<Point>& points = PointsOf(slot);
  const QRectF near = Near();
  std::vector<QPolygonF> lines(1);
  std::vector<QPointF> marks;
  const double distance = Scaled(MarkDistance);
  double way = slot * distance / FrequencyAnalyser::SlotCount;  // until the next mark
  for (std::size_t i = 0; i < points.size(); ++i) {
    const Point& point = points[i];
    if (i > 0 && !IsNyquist() && PhaseWraps(points[i - 1].Phase, point.Phase)) {
      lines.emplace_back();
    }
    QPolygonF& line = lines.back();
    const double step = line.empty() ? 0.0 : Distance(line.back(), point.At);
    if (!line.empty() && i + 1 < points.size() && step < LeastStep * ratio_) continue;
    line << point.At;
    if (!near.contains(point.At)) continue;
    way -= step;
    if (way > 0.0) continue;
    marks.push_back(point.At);
    way = distance;
  }
  std::vector<QPolygonF> clipped;
  for (const QPolygonF& line : lines) {
    for (QPolygonF& part : ClippedLine(line, near)) clipped.push_back(std::move(part));
  }
  const TracePen pen = ResponsePen(colours, look_, slot);
  CurvePainter(painter, plate_, pen, ResponseWidth(slot), ratio_,
               ResponseLegend::DrawnCount(analyser_))
      .PaintLines(clipped);
  if (slot == 0 || slot == FrequencyAnalyser::TheorySlot) return;
  painter.setPen(QPen(pen.Colour, ResponseWidth(slot) * ratio_));
  for (const QPointF& at : marks) PaintMemoryMark(painter, colours.Plate, slot, at, ratio_);
}

void PlanePainter::PaintCursors(QPainter& painter, const ScopeColours& colours,
                                int plotWidth) const {
  painter.save();
  painter.setClipRect(plate_);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setFont(numberFont_);
  const double r = CursorSize * ratio_;
  for (int cursor = 0; cursor < static_cast<int>(analyser_.Cursors()); ++cursor) {
    const int column = analyser_.CursorPixel(cursor);
    const double hz = analyser_.AxisFrequency(static_cast<double>(column) / plotWidth);
    const auto place = PlaceAt(hz);
    if (column >= plotWidth || !place) continue;
    const QPointF at = *place;
    painter.setPen(
        QPen(colours.Cursor, std::max(1, Scaled(1.0)), cursor == 0 ? Qt::DashLine : Qt::DotLine));
    if (IsNyquist()) {
      for (const QPolygonF& ray : ClippedLine({axes_.PlaceOf({0.0, 0.0}), at}, Near())) {
        painter.drawPolyline(ray);
      }
    }
    if (!Near().contains(at)) continue;
    if (!IsNyquist()) {
      painter.drawLine(QPointF(plate_.left(), at.y()), QPointF(plate_.right(), at.y()));
      painter.drawLine(QPointF(at.x(), plate_.top()), QPointF(at.x(), plate_.bottom()));
    }
    painter.setPen(QPen(colours.Cursor, 1.6 * ratio_));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(at, r, r);
    // The first one's above the point, the second one's below: they may be close.
    const double above = cursor == 0 ? -r : r + QFontMetrics(numberFont_).ascent();
    painter.drawText(at + QPointF(r + Scaled(2.0), above),
                     QString::number(cursor + 1) + QStringLiteral(": ") +
                         QString::fromStdString(FormatGeneral(hz, 4, 1)) + QStringLiteral(" Hz"));
  }
  painter.restore();
}

std::optional<QPointF> PlanePainter::PlaceAt(double hz) const {
  const int slot = analyser_.CursorSlot();
  if (!ResponseLegend::IsDrawn(analyser_, slot)) return std::nullopt;
  const auto gain = analyser_.GainRead(slot, hz);
  const auto phase = analyser_.PhaseRead(slot, hz);
  if (!gain || !phase) return std::nullopt;
  return Place(*gain, *phase);
}

std::optional<PlanePainter::Nearest> PlanePainter::NearestTo(const QPointF& at) const {
  const std::vector<Point>& points = PointsOf(analyser_.CursorSlot());
  const auto nearest = std::min_element(
      points.begin(), points.end(),
      [&](const Point& a, const Point& b) { return Distance(a.At, at) < Distance(b.At, at); });
  if (nearest == points.end()) return std::nullopt;
  return Nearest{nearest->Hz, Distance(nearest->At, at) / ratio_};
}

}  // namespace torvane
