#include "plot/poles/pole_painter.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/text.h"
#include "plot/clipped_lines.h"
#include "plot/curve_painter.h"
#include "plot/number_axis.h"
#include "plot/picture_fonts.h"
#include "plot/plot_layout.h"
#include "plot/qt_text.h"

namespace torvane {

namespace {

constexpr int AxisLabelWidth = 6;  // characters
constexpr double CrossSize = 5.0;  // from its middle
constexpr double CrossWidth = 2.0;
constexpr double WayWidth = 1.4;
constexpr double LineEnds = 4.0;     // of the plate, where lines end
constexpr double MouseReach = 12.0;  // pixels of design
constexpr double Spare = 1.1;        // about what has to be seen
constexpr double LeastExtent = 1.0;  // 1/s
constexpr int CirclePieces = 180;
constexpr int LocusTrace = 1;  // of ways
constexpr int UnstableTrace = 4;

bool IsUnstable(std::complex<double> pole, double ts) {
  constexpr double Rounding = 1e-9;
  return ts > 0.0 ? std::abs(pole) > 1.0 + Rounding : pole.real() > Rounding * std::abs(pole);
}

}  // namespace

void PolePainter::Layout(const QSize& size, double pixelRatio, const PoleView& view) {
  size_ = size;
  ratio_ = pixelRatio;
  textFont_ = ScaledFont(QGuiApplication::font(), ratio_, 1.0);
  numberFont_ = NumberFont(ratio_);
  const QFontMetrics numbers(numberFont_);
  const QFontMetrics words(textFont_);
  const int gap = Scaled(LabelGap);
  const int left =
      Scaled(PlotMargin) + numbers.horizontalAdvance(QString(AxisLabelWidth, u'0')) + gap;
  const int top = words.height() + 2 * gap;
  const int bottom = words.height() + numbers.height() + 3 * gap;
  axes_.Plate = {left, top, std::max(SmallestPlate, size.width() - left - Scaled(2 * PlotMargin)),
                 std::max(SmallestPlate, size.height() - top - bottom)};
  const double division = 1.0 * std::min(axes_.Plate.width(), axes_.Plate.height()) / Divisions;
  axes_.Division = {division, division};
  const PoleView shown = view.Scale > 0.0 ? view : Fitting();
  axes_.Centre = shown.Centre;
  axes_.Scale = {shown.Scale, shown.Scale};
}

// In the z plane the unit circle, in the s plane the axis of stability is always seen.
PoleView PolePainter::Fitting() const {
  double left = map_.Ts > 0.0 ? -1.0 : 0.0;
  double right = map_.Ts > 0.0 ? 1.0 : 0.0;
  double up = map_.Ts > 0.0 ? 1.0 : LeastExtent;
  for (const std::complex<double> pole : map_.Poles) {
    left = std::min(left, pole.real());
    right = std::max(right, pole.real());
    up = std::max(up, pole.imag());
  }
  const double across = std::max(right - left, LeastExtent) * Spare / axes_.Plate.width();
  const double upwards = 2.0 * up * Spare / axes_.Plate.height();
  return {{(left + right) / 2.0, 0.0}, RoundStep(std::max(across, upwards) * axes_.Division.x())};
}

QPointF PolePainter::PlaceOf(std::complex<double> value) const {
  return axes_.PlaceOf({value.real(), value.imag()});
}

QRectF PolePainter::Near() const {
  return QRectF(axes_.Plate).adjusted(-LineEnds, -LineEnds, LineEnds, LineEnds);
}

// The greatest distance of what is seen from where poles are slow: from 0, or from z = 1.
double PolePainter::Reach() const {
  const QPointF origin(map_.Ts > 0.0 ? 1.0 : 0.0, 0.0);
  const QRectF plate(axes_.Plate);
  double reach = 0.0;
  for (const QPointF& corner :
       {plate.topLeft(), plate.topRight(), plate.bottomLeft(), plate.bottomRight()}) {
    const QPointF off = axes_.ValueAt(corner) - origin;
    reach = std::max(reach, std::hypot(off.x(), off.y()));
  }
  if (map_.Ts == 0.0) return reach;
  // A pole at z = 1 + d lies near s = d / ts; further out it lies at most log 2 nearer.
  constexpr double Curved = 0.5;
  return reach > Curved ? 10.0 / map_.Ts : 2.0 * reach / map_.Ts;
}

QPolygonF PolePainter::PlacesOf(const std::vector<std::complex<double>>& values,
                                bool mirrored) const {
  QPolygonF line;
  for (const std::complex<double> value : values) {
    line << PlaceOf(mirrored ? std::conj(value) : value);
  }
  return line;
}

void PolePainter::Paint(QPainter& painter, const ScopeColours& colours) const {
  painter.fillRect(QRect(QPoint(0, 0), size_), colours.Around);
  painter.fillRect(axes_.Plate, colours.Plate);
  PaintAxes(painter, colours);
  painter.save();
  painter.setClipRect(axes_.Plate);
  painter.setRenderHint(QPainter::Antialiasing);
  PaintGrid(painter, colours);
  PaintLimit(painter, colours);
  PaintWays(painter, colours);
  PaintPoles(painter, colours);
  painter.restore();
}

void PolePainter::PaintNumbers(QPainter& painter, bool across) const {
  const QFontMetrics metrics(numberFont_);
  const QRect& plate = axes_.Plate;
  const int gap = Scaled(LabelGap);
  int free = 0;
  for (const double value : across ? axes_.LinesAcross() : axes_.LinesUpwards()) {
    const QPoint at = axes_.PlaceOf({value, value}).toPoint();
    const QString label = QtText(FormatGeneral(value, 4, 1));
    if (!across) {
      painter.drawText(
          QRect(0, at.y() - metrics.height() / 2, plate.left() - gap, metrics.height()),
          Qt::AlignRight | Qt::AlignVCenter, label);
      continue;
    }
    const int width = metrics.horizontalAdvance(label);
    const int left = std::min(at.x() - width / 2, size_.width() - width);
    if (left < free) continue;
    painter.drawText(QRect(left, plate.bottom() + gap, width, metrics.height()),
                     Qt::AlignCenter | Qt::TextDontClip, label);
    free = left + width + gap;
  }
}

void PolePainter::PaintAxes(QPainter& painter, const ScopeColours& colours) const {
  const QRect& plate = axes_.Plate;
  painter.setPen(QPen(colours.Axis, std::max(1, Scaled(1.0))));
  const int y = qRound(axes_.PlaceOf({0.0, 0.0}).y());
  if (y >= plate.top() && y <= plate.bottom()) painter.drawLine(plate.left(), y, plate.right(), y);
  painter.drawRect(plate.adjusted(0, 0, -1, -1));
  painter.setPen(colours.Text);
  painter.setFont(numberFont_);
  PaintNumbers(painter, true);
  PaintNumbers(painter, false);
  painter.setFont(textFont_);
  const int gap = Scaled(LabelGap);
  const int height = QFontMetrics(textFont_).height();
  const QString unit = map_.Ts > 0.0 ? QStringLiteral(" of z") : QStringLiteral(" (1/s)");
  const QString upwards = QStringLiteral("Imaginary") + unit;
  const QString varied = QtText(map_.Varied);
  const QRect above(plate.left(), plate.top() - height - gap, plate.width(), height);
  const QFontMetrics words(textFont_);
  painter.drawText(above, Qt::AlignLeft, upwards);
  if (words.horizontalAdvance(upwards + varied) + gap < plate.width()) {
    painter.drawText(above, Qt::AlignRight, varied);
  }
  painter.drawText(QRect(plate.left(), size_.height() - height - gap, plate.width(), height),
                   Qt::AlignCenter, QStringLiteral("Real") + unit);
}

// Where a pole or another label stands already, or close beside it, there is none.
void PolePainter::PaintLabel(QPainter& painter, const QPointF& at, const std::string& text,
                             std::vector<QRectF>& taken) const {
  const QFontMetrics metrics(numberFont_);
  const QString label = QtText(text);
  const QSizeF size(metrics.horizontalAdvance(label), metrics.height());
  const QRectF plate = QRectF(axes_.Plate).adjusted(2.0, 2.0, -2.0, -2.0);
  QRectF room(at + QPointF(Scaled(2.0), -size.height()), size);
  room.moveLeft(std::clamp(room.left(), plate.left(), plate.right() - size.width()));
  room.moveTop(std::clamp(room.top(), plate.top(), plate.bottom() - size.height()));
  const double gap = Scaled(LabelGap);
  const QRectF apart = room.adjusted(-gap, 0.0, gap, 0.0);
  if (std::ranges::any_of(taken, [&](const QRectF& other) { return other.intersects(apart); })) {
    return;
  }
  taken.push_back(room);
  painter.drawText(room, Qt::AlignCenter | Qt::TextDontClip, label);
}

// A frequency is told where its line begins, a damping where it leaves the plate or, in the z
// plane, halfway.
void PolePainter::PaintGrid(QPainter& painter, const ScopeColours& colours) const {
  std::vector<QPolygonF> lines;
  std::vector<std::pair<QPointF, std::string>> labels;
  const auto add = [&](const std::vector<PoleGridLine>& grid, auto labelled) {
    for (const PoleGridLine& line : grid) {
      const auto parts = ClippedLine(PlacesOf(line.Points, false), axes_.Plate);
      if (!parts.empty()) labels.emplace_back(labelled(parts), line.Label);
      lines.insert(lines.end(), parts.begin(), parts.end());
      const auto images = ClippedLine(PlacesOf(line.Points, true), axes_.Plate);
      lines.insert(lines.end(), images.begin(), images.end());
    }
  };
  const double reach = Reach();
  const bool sampled = map_.Ts > 0.0;
  add(FrequencyLines(map_.Ts, reach), [](const auto& parts) { return parts.front().front(); });
  add(DampingLines(map_.Ts, reach), [sampled](const auto& parts) {
    return sampled ? parts.front()[parts.front().size() / 2] : parts.back().back();
  });
  CurvePainter(painter, axes_.Plate, {colours.Axis, {2.0, 3.0}}, 1.0, ratio_, 1).PaintLines(lines);
  painter.setFont(numberFont_);
  painter.setPen(colours.Text);
  std::vector<QRectF> taken;
  const QPointF arm = QPointF(CrossSize, CrossSize) * ratio_;
  for (const std::complex<double> pole : map_.Poles) {
    taken.emplace_back(PlaceOf(pole) - arm, PlaceOf(pole) + arm);
  }
  for (const auto& [at, text] : labels) PaintLabel(painter, at, text, taken);
}

// The imaginary axis, or the unit circle.
void PolePainter::PaintLimit(QPainter& painter, const ScopeColours& colours) const {
  QPolygonF limit;
  if (map_.Ts > 0.0) {
    for (int i = 0; i <= CirclePieces; ++i) {
      limit << PlaceOf(std::polar(1.0, 2.0 * std::numbers::pi * i / CirclePieces));
    }
  } else {
    const double x = axes_.PlaceOf({0.0, 0.0}).x();
    limit << QPointF(x, axes_.Plate.top()) << QPointF(x, axes_.Plate.bottom());
  }
  painter.setPen(QPen(colours.Text, 1.2 * ratio_));
  for (const QPolygonF& part : ClippedLine(limit, Near())) painter.drawPolyline(part);
}

void PolePainter::PaintWays(QPainter& painter, const ScopeColours& colours) const {
  painter.setPen(QPen(colours.Trace(LocusTrace), WayWidth * ratio_));
  for (const auto& way : map_.Ways) {
    for (const QPolygonF& part : ClippedLine(PlacesOf(way, false), Near())) {
      painter.drawPolyline(part);
    }
  }
}

// One beyond the limit is told by its colour and by what stands below the picture.
void PolePainter::PaintPoles(QPainter& painter, const ScopeColours& colours) const {
  const double r = CrossSize * ratio_;
  for (const std::complex<double> pole : map_.Poles) {
    const QPointF at = PlaceOf(pole);
    if (!Near().contains(at)) continue;
    const QColor colour =
        IsUnstable(pole, map_.Ts) ? colours.Trace(UnstableTrace) : colours.Trace(0);
    painter.setPen(QPen(colour, CrossWidth * ratio_));
    painter.drawLine(at - QPointF(r, r), at + QPointF(r, r));
    painter.drawLine(at - QPointF(r, -r), at + QPointF(r, -r));
  }
}

std::optional<std::size_t> PolePainter::PoleAt(const QPointF& place) const {
  const auto distance = [&](std::complex<double> pole) {
    const QPointF off = PlaceOf(pole) - place;
    return std::hypot(off.x(), off.y());
  };
  const auto nearest = std::ranges::min_element(map_.Poles, {}, distance);
  if (nearest == map_.Poles.end() || distance(*nearest) > MouseReach * ratio_) return std::nullopt;
  return static_cast<std::size_t>(nearest - map_.Poles.begin());
}

Picture PolePicture(PoleMap map, const PoleView& view) {
  const auto paint = [map = std::move(map), view](QPainter& painter, const QSize& size,
                                                  double ratio) {
    PolePainter poles(map);
    poles.Layout(size, ratio, view);
    poles.Paint(painter, ScopeColours::Light());
  };
  return {"Poles", paint};
}

}  // namespace torvane
