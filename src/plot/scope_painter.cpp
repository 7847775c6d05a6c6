#include "plot/scope_painter.h"

#include <QFontDatabase>
#include <QFontMetrics>
#include <QGuiApplication>
#include <algorithm>

#include "instruments/scope/screen_pixels.h"
#include "plot/picture_fonts.h"

namespace torvane {

namespace {

constexpr double Margin = 8.0;
constexpr double LabelGap = 5.0;
constexpr double TickLength = 3.0;
constexpr double MarkLength = 18.0;  // of the line before a legend entry
constexpr double EntryGap = 18.0;    // between legend entries of one row
constexpr int TicksPerDivision = 5;
constexpr int WidestTick = 7;  // characters of the left labels that always have room
constexpr int SmallestPlate = 40;

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
  drawn_ = 0;
  marks_.assign(scope_.Channels().size(), {});
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

// Numbered, for the keyboard and the read-out name them so.
void ScopePainter::PaintCursors(QPainter& painter, const ScopeColours& colours) const {
  if (scope_.XYMode()) return;
  const ScopeCursors& cursors = scope_.Cursors();
  painter.setFont(numberFont_);
  painter.setPen(QPen(colours.Cursor, std::max(1, Scaled(1.0)), Qt::DashLine));
  for (int k = 0; k < cursors.Mode; ++k) {
    const int x = plate_.left() + cursors.X[static_cast<std::size_t>(k)];
    if (x > plate_.right()) continue;
    painter.drawLine(x, plate_.top(), x, plate_.bottom());
    painter.drawText(x + Scaled(TickLength), plate_.bottom() - Scaled(LabelGap),
                     QString::number(k + 1));
  }
}

void ScopePainter::PaintTraces(QPainter& painter, const ScopeScreen& screen) {
  drawn_ = 0;
  marks_.assign(scope_.Channels().size(), {});
  PaintKept(painter, screen);
  PaintFrom(0, painter, screen);
}

QRect ScopePainter::PaintNew(QPainter& painter, const ScopeScreen& screen) {
  const int first = std::max(0, drawn_ - 1);
  return PaintFrom(first, painter, screen).translated(plate_.topLeft()) & plate_;
}

void ScopePainter::PaintKept(QPainter& painter, const ScopeScreen& screen) {
  if (!scope_.Kept()) return;
  const ScopeScreen kept = OnTimeAxisOf(scope_, *scope_.Kept(), screen);
  PaintEach(0, painter, kept, [&](TracePainter& traces, std::size_t channel) {
    traces.PaintKept(points_, PenColour(scope_.Channels()[channel]->Colour()));
  });
}

QRect ScopePainter::PaintFrom(int first, QPainter& painter, const ScopeScreen& screen) {
  drawn_ = screen.PointCount();
  QRect area;
  PaintEach(first, painter, screen, [&](TracePainter& traces, std::size_t channel) {
    area |= traces.Paint(points_, PenColour(scope_.Channels()[channel]->Colour()), marks_[channel]);
  });
  return area;
}

void ScopePainter::PaintEach(int first, QPainter& painter, const ScopeScreen& screen,
                             const std::function<void(TracePainter&, std::size_t)>& paint) {
  painter.save();
  painter.setClipRect(plate_);
  painter.translate(plate_.topLeft());
  painter.setRenderHint(QPainter::Antialiasing);
  const ScreenPixels pixels(plate_.width(), plate_.height());
  pixels.XOfPoints(scope_, screen, first, x_);
  const std::vector<std::size_t> displayed = scope_.DisplayedChannels();
  // Kept traces share the time of a frame with the live ones.
  const std::size_t painted = displayed.size() * (scope_.Kept() ? 2 : 1);
  TracePainter traces(painter, plate_.size(), ratio_, painted, time_);
  for (const std::size_t k : displayed) {
    const ZelChannel& channel = *scope_.Channels()[k];
    points_.clear();
    for (std::size_t i = 0; i < x_.size(); ++i) {
      const double value = screen.Values[k][static_cast<std::size_t>(first) + i];
      points_.push_back({x_[i], pixels.Y(channel, value), pixels.Beyond(channel, value)});
    }
    paint(traces, k);
  }
  painter.restore();
}

}  // namespace torvane
