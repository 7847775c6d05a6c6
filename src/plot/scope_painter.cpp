#include "plot/scope_painter.h"

#include <QFontDatabase>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QPaintEngine>
#include <algorithm>
#include <cmath>

#include "core/messages.h"
#include "plot/picture_fonts.h"

namespace torvane {

namespace {

constexpr double Margin = 8.0;
constexpr double LabelGap = 5.0;
constexpr double TickLength = 3.0;
constexpr double TraceWidth = 1.6;
constexpr double MarkLength = 18.0;  // of the line before a legend entry
constexpr double EntryGap = 18.0;    // between legend entries of one row
constexpr int TicksPerDivision = 5;
constexpr int WidestTick = 7;  // characters of the left labels that always have room
constexpr int SmallestPlate = 40;
constexpr int SegmentsPerPiece = 4;
constexpr int FarOutside = 32000;  // beyond it the line drawing of some devices overflows

// On pixels in short pieces: the smooth filling of an outline gets slower with the square of the
// number of its edges that share a row of pixels, and a trace that swings to and fro has hundreds.
void DrawTrace(QPainter& painter, const QPolygon& line) {
  const int last = static_cast<int>(line.size()) - 1;
  const bool pixels = painter.paintEngine()->type() == QPaintEngine::Raster;
  const int piece = pixels ? SegmentsPerPiece : std::max(1, last);
  for (int from = 0; from < last; from += piece) {
    painter.drawPolyline(line.constData() + from, std::min(piece, last - from) + 1);
  }
}

QString Text(const std::string& text) {
  return QString::fromStdString(text);
}

}  // namespace

void ScopePainter::Layout(const QSize& size, double pixelRatio, const ScopeLabels& labels) {
  size_ = size;
  ratio_ = pixelRatio;
  labels_ = labels;
  textFont_ = ScaledFont(QGuiApplication::font(), ratio_, 1.0);
  numberFont_ = ScaledFont(QFontDatabase::systemFont(QFontDatabase::FixedFont), ratio_, 0.92);

  const QFontMetrics numbers(numberFont_);
  const int margin = Scaled(Margin);
  const int left = margin + numbers.horizontalAdvance(QString(WidestTick, u'0')) + Scaled(LabelGap);
  PlaceLegend(size.width() - 2 * margin);
  const int legendHeight = legendPlaces_.empty() ? 0 : legendPlaces_.back().bottom() + 1;
  const int bottom = numbers.height() + Scaled(LabelGap) + legendHeight + 2 * margin;
  const int right = std::max(margin, numbers.horizontalAdvance(QStringLiteral("000")));
  plate_ = QRect(left, margin, std::max(SmallestPlate, size.width() - left - right),
                 std::max(SmallestPlate, size.height() - margin - bottom));
  for (QRect& place : legendPlaces_) {
    place.translate(margin, plate_.bottom() + numbers.height() + Scaled(LabelGap) + margin);
  }
  scope_.SetScreenSize(plate_.width(), plate_.height());
}

// Entries stand in rows from the left; one that does not fit begins the next row.
void ScopePainter::PlaceLegend(int width) {
  const QFontMetrics metrics(textFont_);
  const int height = metrics.height() + Scaled(2.0);
  legendPlaces_.clear();
  int x = 0;
  int y = 0;
  for (const LegendEntry& entry : labels_.Legend) {
    const int mark = entry.Colour < 0 ? 0 : Scaled(MarkLength + LabelGap);
    const int entryWidth = mark + metrics.horizontalAdvance(Text(entry.Text)) + Scaled(2.0);
    if (x > 0 && x + entryWidth > width) {
      x = 0;
      y += height;
    }
    legendPlaces_.emplace_back(x, y, entryWidth, height);
    x += entryWidth + Scaled(EntryGap);
  }
}

void ScopePainter::PaintBackground(QPainter& painter, const ScopeColours& colours) const {
  painter.fillRect(QRect(QPoint(0, 0), size_), colours.Around);
  painter.fillRect(plate_, colours.Plate);
  PaintGrid(painter, colours);
  PaintTicks(painter, colours);
  PaintLabels(painter, colours);
  PaintLegend(painter, colours);
}

void ScopePainter::PaintGrid(QPainter& painter, const ScopeColours& colours) const {
  const auto line = [&](bool vertical, int k, int count) {
    painter.setPen(QPen(2 * k == count ? colours.Axis : colours.Grid, std::max(1, Scaled(1.0))));
    if (vertical) {
      const int x = plate_.left() + k * plate_.width() / count;
      painter.drawLine(x, plate_.top(), x, plate_.bottom());
    } else {
      const int y = plate_.top() + k * plate_.height() / count;
      painter.drawLine(plate_.left(), y, plate_.right(), y);
    }
  };
  for (int k = 1; k < ZelScope::HorizontalDivisions; ++k) {
    line(true, k, ZelScope::HorizontalDivisions);
  }
  for (int k = 1; k < ZelScope::VerticalDivisions; ++k) line(false, k, ZelScope::VerticalDivisions);
  painter.setPen(QPen(colours.Axis, std::max(1, Scaled(1.0))));
  painter.drawRect(plate_.adjusted(0, 0, -1, -1));
}

// Fifths of a division along the centre axes.
void ScopePainter::PaintTicks(QPainter& painter, const ScopeColours& colours) const {
  painter.setPen(QPen(colours.Axis, std::max(1, Scaled(1.0))));
  const int length = Scaled(TickLength);
  const int centreX = plate_.left() + plate_.width() / 2;
  const int centreY = plate_.top() + plate_.height() / 2;
  constexpr int across = ZelScope::HorizontalDivisions * TicksPerDivision;
  for (int k = 1; k < across; ++k) {
    const int x = plate_.left() + k * plate_.width() / across;
    painter.drawLine(x, centreY - length, x, centreY + length);
  }
  constexpr int down = ZelScope::VerticalDivisions * TicksPerDivision;
  for (int k = 1; k < down; ++k) {
    const int y = plate_.top() + k * plate_.height() / down;
    painter.drawLine(centreX - length, y, centreX + length, y);
  }
}

void ScopePainter::PaintLabels(QPainter& painter, const ScopeColours& colours) const {
  painter.setFont(numberFont_);
  const QFontMetrics metrics(numberFont_);
  painter.setPen(colours.Text);
  const int height = metrics.height();
  const int gap = Scaled(LabelGap);
  const int lines = static_cast<int>(labels_.Left.size());
  for (int k = 0; k < lines; ++k) {
    const int y = plate_.top() + k * plate_.height() / (lines - 1);
    const int top = std::clamp(y - height / 2, 0, plate_.bottom() - height / 2);
    painter.drawText(QRect(0, top, plate_.left() - gap, height), Qt::AlignRight | Qt::AlignVCenter,
                     Text(labels_.Left[static_cast<std::size_t>(k)]));
  }
  if (labels_.LeftColour >= 0) {
    // A bar in the trace's colour beside the labels tells whose values they are.
    const QRect bar(plate_.left() - Scaled(3.0), plate_.top(), Scaled(2.0), plate_.height());
    painter.fillRect(bar, PenColour(labels_.LeftColour));
  }
  const int columns = static_cast<int>(labels_.Bottom.size());
  int widest = 0;
  for (const std::string& label : labels_.Bottom) {
    widest = std::max(widest, metrics.horizontalAdvance(Text(label)));
  }
  // On a narrow screen every second division, or only every fifth, has room for its label.
  const int division = plate_.width() / ZelScope::HorizontalDivisions;
  const int step = widest + gap < division ? 1 : widest + gap < 2 * division ? 2 : 5;
  for (int k = 0; k < columns; k += step) {
    const int x = plate_.left() + k * plate_.width() / (columns - 1);
    const int half = plate_.width() / 20;
    painter.drawText(QRect(x - half, plate_.bottom() + gap, 2 * half, height),
                     Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextDontClip,
                     Text(labels_.Bottom[static_cast<std::size_t>(k)]));
  }
}

void ScopePainter::PaintLegend(QPainter& painter, const ScopeColours& colours) const {
  painter.setFont(textFont_);
  for (std::size_t i = 0; i < legendPlaces_.size(); ++i) {
    const LegendEntry& entry = labels_.Legend[i];
    QRect place = legendPlaces_[i];
    if (entry.Colour >= 0) {
      const QRect mark(place.left(), place.center().y() - Scaled(5.0), Scaled(MarkLength),
                       Scaled(10.0));
      painter.fillRect(mark, colours.LegendBack);
      painter.fillRect(mark.adjusted(Scaled(2.0), Scaled(4.0), -Scaled(2.0), -Scaled(4.0)),
                       PenColour(entry.Colour));
      place.setLeft(mark.right() + Scaled(LabelGap));
    }
    painter.setPen(colours.Text);
    painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, Text(entry.Text));
  }
}

void ScopePainter::BeginTraces(QPainter& painter) const {
  painter.save();
  painter.setClipRect(plate_);
  painter.translate(plate_.topLeft());
  painter.setRenderHint(QPainter::Antialiasing);
}

template <typename Paint>
void ScopePainter::ForEachTrace(QPainter& painter, Paint paint) {
  int drawn = 0;
  for (const auto& channel : scope_.Channels()) {
    if (!channel->Displayed) continue;
    // One trace more than the colours is let through before it is reported.
    if (drawn > TraceColourCount) Error("Internal Error: Too many displayed channels");
    ++drawn;
    painter.setPen(QPen(PenColour(channel->Colour), TraceWidth * ratio_, Qt::SolidLine, Qt::FlatCap,
                        Qt::BevelJoin));
    paint(*channel);
  }
}

QPoint ScopePainter::PointAt(const ZelChannel& channel, int index) const {
  const ZelChannel* horizontal = scope_.HorizontalChannel();
  return {horizontal ? horizontal->XPixel(index) : 0,
          std::clamp(channel.YPixel(index), -FarOutside, FarOutside)};
}

// Lines along the points from one screen index to another, modulo the screen's length.
QRect ScopePainter::PaintSegment(QPainter& painter, int from, int to) {
  const int length = scope_.ScreenLength();
  const int count = (to - from + length) % length + 1;
  QRect area;
  ForEachTrace(painter, [&](const ZelChannel& channel) {
    line_.resize(count);
    for (int k = 0; k < count; ++k) line_[k] = PointAt(channel, (from + k) % length);
    DrawTrace(painter, line_);
    area |= line_.boundingRect();
  });
  const int room = Scaled(TraceWidth) + 1;
  return area.isNull() ? area : area.adjusted(-room, -room, room, room);
}

void ScopePainter::PaintTraces(QPainter& painter, bool previousSweep) {
  lastDrawn_ = scope_.FillIndex();
  if (lastDrawn_ < 0) return;
  BeginTraces(painter);
  if (previousSweep) PaintPreviousSweep(painter);
  PaintSegment(painter, scope_.StartIndex(), lastDrawn_);
  painter.restore();
}

QRect ScopePainter::PaintNew(QPainter& painter) {
  if (!HasNew()) return {};
  const int from = lastDrawn_ < 0 ? scope_.StartIndex() : lastDrawn_;
  lastDrawn_ = scope_.FillIndex();
  BeginTraces(painter);
  const QRect area = PaintSegment(painter, from, lastDrawn_);
  painter.restore();
  return area.translated(plate_.topLeft()) & plate_;
}

// Screen points after the last one captured still hold the sweep before. Their X pixels do not: X
// is measured from the start of the present sweep. So they are placed anew, back from the right
// edge, where that sweep ended. False when they do not form the rest of a sweep.
bool ScopePainter::PlacePreviousSweep() {
  const int fill = scope_.FillIndex();
  const int last = scope_.ScreenLength() - 1;
  if (scope_.StartIndex() != 0 || fill + 1 >= last) return false;
  const ZelChannel* horizontal = scope_.HorizontalChannel();
  previousX_.assign(static_cast<std::size_t>(last - fill), 0);
  if (scope_.XYMode()) {
    for (int i = fill + 1; i <= last; ++i) {
      previousX_[static_cast<std::size_t>(i - fill - 1)] = horizontal->XPixel(i);
    }
    return true;
  }
  const AxisScale& axis = horizontal->Horizontal;
  const double multiplier = horizontal->Signal().Multiplier();
  const double end = horizontal->ScreenValue(last) * multiplier;
  const double expected = axis.Scale * ZelScope::HorizontalDivisions * (last - fill - 1) / last;
  const double found = end - horizontal->ScreenValue(fill + 1) * multiplier;
  // Other spacing: there was no sweep before, it had another time base, or the solver's step is
  // longer than the sample interval. Two points at least; single precision blurs late times.
  if (std::abs(found - expected) > std::abs(expected) * 0.05) return false;
  for (int i = fill + 1; i <= last; ++i) {
    const double back = (end - horizontal->ScreenValue(i) * multiplier) / axis.Scale;
    const int x = plate_.width() - 2 -
                  static_cast<int>(back * plate_.width() / ZelScope::HorizontalDivisions);
    previousX_[static_cast<std::size_t>(i - fill - 1)] = x;
  }
  return true;
}

void ScopePainter::PaintPreviousSweep(QPainter& painter) {
  if (!PlacePreviousSweep()) return;
  const int fill = scope_.FillIndex();
  ForEachTrace(painter, [&](const ZelChannel& channel) {
    line_.resize(static_cast<int>(previousX_.size()) + 1);
    line_[0] = PointAt(channel, fill);
    for (int k = 1; k < line_.size(); ++k) {
      line_[k] =
          QPoint(previousX_[static_cast<std::size_t>(k - 1)], PointAt(channel, fill + k).y());
    }
    DrawTrace(painter, line_);
  });
}

}  // namespace torvane
