#include "plot/scope/scope_painter.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <algorithm>
#include <cmath>

#include "instruments/scope/screen_pixels.h"
#include "plot/picture_fonts.h"
#include "plot/plot_layout.h"
#include "plot/qt_text.h"

namespace torvane {

namespace {

constexpr double TickLength = 3.0;
constexpr double BadgeSize = 14.0;  // of the number before a legend entry
constexpr int TicksPerDivision = 5;
constexpr int WidestLeftLabel = 7;         // characters of the left labels that always have room
constexpr double LegendTakesAtMost = 0.3;  // of the picture's height
constexpr double NamesTakeAtMost = 0.15;   // of the screen's width
constexpr double WidePlate = 400.0;        // that names leave

// From a point to the line between two points of a trace.
double Distance(const QPointF& from, const TracePoint& a, const TracePoint& b) {
  const QPointF start(a.X, a.Y);
  const QPointF along = QPointF(b.X, b.Y) - start;
  const double length = QPointF::dotProduct(along, along);
  const double part =
      length > 0.0 ? std::clamp(QPointF::dotProduct(from - start, along) / length, 0.0, 1.0) : 0.0;
  const QPointF nearest = start + part * along - from;
  return std::hypot(nearest.x(), nearest.y());
}

// Of the traces; which scale the X axis has, its labels tell.
void UseNamesAlone(std::vector<LegendEntry>& legend) {
  std::erase_if(legend, [](const LegendEntry& entry) { return entry.Name.empty(); });
  for (LegendEntry& entry : legend) entry.Text = entry.Name;
}

}  // namespace

void ScopePainter::Layout(const QSize& size, double pixelRatio, const ScopeLabels& labels,
                          const TraceLook& look) {
  size_ = size;
  ratio_ = pixelRatio;
  labels_ = labels;
  look_ = look;
  textFont_ = ScaledFont(QGuiApplication::font(), ratio_, 1.0);
  numberFont_ = NumberFont(ratio_);
  markFont_ = ScaledFont(QGuiApplication::font(), ratio_, 0.85);
  markFont_.setBold(true);
  const int margin = Scaled(PlotMargin);
  for (const bool scales : {true, false}) {
    if (!scales) UseNamesAlone(labels_.Legend);
    PlaceLegend(size.width() - 2 * margin);
    PlacePlate(LegendHeight());
    if (LegendFitsBelow()) break;
    if (!scales) legendPlaces_.clear();
  }
  if (legendPlaces_.empty()) PlacePlate(0);
  const int numbers = QFontMetrics(numberFont_).height();
  const QPoint below(margin, plate_.bottom() + numbers + Scaled(LabelGap) + margin);
  for (QRect& place : legendPlaces_) place.translate(below);
  drawn_ = 0;
  traces_.clear();
  touched_.Clear(plate_.size());
}

int ScopePainter::LegendRow() const {
  return QFontMetrics(textFont_).height() + Scaled(2.0);
}

int ScopePainter::LegendHeight() const {
  return legendPlaces_.empty() ? 0 : legendPlaces_.back().bottom() + 1;
}

// The legend's rows leave the screen most of the picture, and enough height.
bool ScopePainter::LegendFitsBelow() const {
  return LegendHeight() <= LegendTakesAtMost * size_.height() &&
         plate_.height() >= Scaled(leastHeight_);
}

// Tags have names where these leave the screen nearly all of its width.
void ScopePainter::PlacePlate(int legendHeight) {
  const QFontMetrics numbers(numberFont_);
  const int margin = Scaled(PlotMargin);
  const int gap = Scaled(LabelGap);
  const int left = margin + numbers.horizontalAdvance(QString(WidestLeftLabel, u'0')) + 2 * gap +
                   ScreenMarks::LeftRoom(ratio_);
  const int top = margin + ScreenMarks::TopRoom(ratio_);
  const int bottom = numbers.height() + gap + legendHeight + 2 * margin;
  const int least = std::max(margin, numbers.horizontalAdvance(QStringLiteral("000")));
  const auto right = [&](bool names) {
    const int tags = ScreenMarks::TagRoom(labels_, names, markFont_, ratio_) + margin / 2;
    return labels_.Traces.empty() ? least : std::max(least, tags);
  };
  const int room = size_.width() - left;
  const bool names = right(true) - right(false) < NamesTakeAtMost * room &&
                     room - right(true) >= Scaled(WidePlate);
  const int row = labels_.Legend.empty() ? 0 : LegendRow();
  around_ = QSize(left + right(false), top + bottom - legendHeight + row);
  plate_ = QRect(left, top, std::max(SmallestPlate, size_.width() - left - right(names)),
                 std::max(SmallestPlate, size_.height() - top - bottom));
  marks_.Layout(plate_, labels_, names, markFont_, ratio_);
}

// Entries stand in rows from the left; one that does not fit begins the next row.
void ScopePainter::PlaceLegend(int width) {
  const QFontMetrics metrics(textFont_);
  const int height = LegendRow();
  legendPlaces_.clear();
  int x = 0;
  int y = 0;
  for (const LegendEntry& entry : labels_.Legend) {
    const int sample = look_.Patterns ? Scaled(SampleLength + LabelGap) : 0;
    const int mark = entry.Colour < 0 ? 0 : Scaled(BadgeSize + LabelGap) + sample;
    const int entryWidth = mark + metrics.horizontalAdvance(QtText(entry.Text)) + Scaled(2.0);
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
  PaintAxis(painter, colours);
  PaintColumns(painter, colours);
  PaintLegend(painter, colours);
  marks_.PaintZeros(painter, colours);
  marks_.PaintTrigger(painter, colours);
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

// Values at the division lines, or where these are close at every second or fourth; a bar and a
// caption in the trace's colour tell whose they are.
void ScopePainter::PaintAxis(QPainter& painter, const ScopeColours& colours) const {
  if (labels_.LeftColour < 0) return;
  painter.setFont(numberFont_);
  painter.setPen(colours.Text);
  const int height = QFontMetrics(numberFont_).height();
  const int gap = Scaled(LabelGap);
  const int right = plate_.left() - ScreenMarks::LeftRoom(ratio_) - gap;
  const int lines = static_cast<int>(labels_.Left.size());
  const int division = plate_.height() / ZelScope::VerticalDivisions;
  const int step = height <= division ? 1 : height <= 2 * division ? 2 : 4;
  for (int k = 0; k < lines; k += step) {
    const int y = plate_.top() + k * plate_.height() / (lines - 1);
    painter.drawText(QRect(0, y - height / 2, right - gap, height),
                     Qt::AlignRight | Qt::AlignVCenter,
                     QtText(labels_.Left[static_cast<std::size_t>(k)]));
  }
  const QColor& colour = colours.Trace(labels_.LeftColour);
  painter.fillRect(QRect(right, plate_.top(), Scaled(2.0), plate_.height()), colour);

  const QFontMetrics metrics(markFont_);
  const QString text = QtText(std::to_string(labels_.LeftColour + 1) + " " + labels_.Axis);
  QRect caption(Scaled(PlotMargin), Scaled(PlotMargin) / 2,
                metrics.horizontalAdvance(text) + 2 * gap, metrics.height() + Scaled(2.0));
  const QRect flag = marks_.PositionFlag();
  if (flag.left() < caption.right() + gap && !flag.isEmpty()) caption.moveLeft(flag.right() + gap);
  painter.fillRect(caption, colour);
  painter.setFont(markFont_);
  painter.setPen(colours.TextOn(labels_.LeftColour));
  painter.drawText(caption, Qt::AlignCenter | Qt::TextDontClip, text);
}

// On a narrow screen every second division, or only every fifth, has room for its label.
void ScopePainter::PaintColumns(QPainter& painter, const ScopeColours& colours) const {
  painter.setFont(numberFont_);
  painter.setPen(colours.Text);
  const QFontMetrics metrics(numberFont_);
  const int gap = Scaled(LabelGap);
  const int columns = static_cast<int>(labels_.Bottom.size());
  int widest = 0;
  for (const std::string& label : labels_.Bottom) {
    widest = std::max(widest, metrics.horizontalAdvance(QtText(label)));
  }
  const int division = plate_.width() / ZelScope::HorizontalDivisions;
  const int step = widest + gap < division ? 1 : widest + gap < 2 * division ? 2 : 5;
  for (int k = 0; k < columns; k += step) {
    const int x = plate_.left() + k * plate_.width() / (columns - 1);
    const int half = plate_.width() / 20;
    painter.drawText(QRect(x - half, plate_.bottom() + gap, 2 * half, metrics.height()),
                     Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextDontClip,
                     QtText(labels_.Bottom[static_cast<std::size_t>(k)]));
  }
}

// Number, line pattern and scales of each trace.
void ScopePainter::PaintLegend(QPainter& painter, const ScopeColours& colours) const {
  for (std::size_t i = 0; i < legendPlaces_.size(); ++i) {
    const LegendEntry& entry = labels_.Legend[i];
    QRect place = legendPlaces_[i];
    if (entry.Colour >= 0) {
      QRect badge(0, 0, Scaled(BadgeSize), Scaled(BadgeSize));
      badge.moveCenter(QPoint(place.left() + badge.width() / 2, place.center().y()));
      painter.fillRect(badge, colours.Trace(entry.Colour));
      painter.setFont(markFont_);
      painter.setPen(colours.TextOn(entry.Colour));
      painter.drawText(badge, Qt::AlignCenter | Qt::TextDontClip,
                       QString::number(entry.Colour + 1));
      place.setLeft(badge.right() + Scaled(LabelGap));
      if (look_.Patterns) {
        PaintSample(painter, colours, entry.Colour, place);
        place.setLeft(place.left() + Scaled(SampleLength + LabelGap));
      }
    }
    painter.setFont(textFont_);
    painter.setPen(colours.Text);
    painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip,
                     QtText(entry.Text));
  }
}

std::optional<std::size_t> ScopePainter::LegendAt(const QPoint& point) const {
  for (std::size_t i = 0; i < legendPlaces_.size(); ++i) {
    if (!legendPlaces_[i].contains(point)) continue;
    for (const TraceMark& trace : labels_.Traces) {
      if (trace.Colour == labels_.Legend[i].Colour) return trace.Channel;
    }
  }
  return std::nullopt;
}

void ScopePainter::PaintSample(QPainter& painter, const ScopeColours& colours, int colour,
                               const QRect& place) const {
  const std::vector<TracePoint> line = {{0, 0, 0}, {Scaled(SampleLength), 0, 0}};
  painter.save();
  painter.translate(place.left(), place.center().y());
  painter.setRenderHint(QPainter::Antialiasing);
  TouchedArea touched;
  TraceTrail trail;
  TracePainter(painter, plate_.size(), ratio_, 1, time_, touched)
      .Paint(line, 0, PenOf(colours, colour), trail);
  painter.restore();
}

TracePen ScopePainter::PenOf(const ScopeColours& colours, int colour) const {
  return {colours.Trace(colour), look_.Patterns ? TracePattern(colour) : QVector<double>()};
}

void ScopePainter::PaintTraces(QPainter& painter, const ScopeColours& colours,
                               const ScopeScreen& screen) {
  const std::vector<std::size_t> displayed = scope_.DisplayedChannels();
  traces_.resize(displayed.size());
  for (std::size_t i = 0; i < displayed.size(); ++i) {
    traces_[i].Channel = displayed[i];
    traces_[i].Trail = {};
  }
  touched_.Clear(plate_.size());
  PaintKept(painter, colours, screen);
  PaintFrom(0, painter, colours, screen, touched_);
}

void ScopePainter::PaintKept(QPainter& painter, const ScopeColours& colours,
                             const ScopeScreen& screen) {
  kept_ = KeptPoints(screen);
  if (kept_.empty()) return;
  painter.save();
  SetUpFor(painter);
  TracePainter traces(painter, plate_.size(), ratio_, TracesToPaint(), time_, touched_);
  for (std::size_t i = 0; i < kept_.size(); ++i) {
    traces.PaintKept(kept_[i], PenOf(colours, scope_.Channels()[traces_[i].Channel]->Colour()));
  }
  painter.restore();
}

std::vector<std::vector<TracePoint>> ScopePainter::KeptPoints(const ScopeScreen& screen) {
  std::vector<std::vector<TracePoint>> points;
  if (!scope_.Kept()) return points;
  const ScopeScreen kept = OnTimeAxisOf(scope_, *scope_.Kept(), screen);
  PlaceColumns(0, kept);
  for (const PaintedTrace& trace : traces_) {
    AppendPoints(points.emplace_back(), trace.Channel, 0, kept);
  }
  return points;
}

// Traces are painted within the screen and in its own coordinates.
void ScopePainter::SetUpFor(QPainter& painter) const {
  painter.setClipRect(plate_);
  painter.translate(plate_.topLeft());
  painter.setRenderHint(QPainter::Antialiasing);
}

QRect ScopePainter::PaintNew(QPainter& painter, const ScopeColours& colours,
                             const ScopeScreen& screen) {
  if (traces_.empty()) {
    PaintTraces(painter, colours, screen);
    return touched_.Bounds().translated(plate_.topLeft());
  }
  TouchedArea grown;
  grown.Clear(plate_.size());
  PaintFrom(drawn_, painter, colours, screen, grown);
  touched_.Add(grown);
  return grown.Bounds().translated(plate_.topLeft());
}

void ScopePainter::PaintFrom(int first, QPainter& painter, const ScopeColours& colours,
                             const ScopeScreen& screen, TouchedArea& touched) {
  drawn_ = screen.PointCount();
  painter.save();
  SetUpFor(painter);
  PlaceColumns(first, screen);
  TracePainter traces(painter, plate_.size(), ratio_, TracesToPaint(), time_, touched);
  const auto joint = static_cast<std::size_t>(std::max(0, first - 1));
  for (PaintedTrace& trace : traces_) {
    trace.Points.resize(static_cast<std::size_t>(first));
    AppendPoints(trace.Points, trace.Channel, first, screen);
    const int colour = scope_.Channels()[trace.Channel]->Colour();
    traces.Paint(trace.Points, joint, PenOf(colours, colour), trace.Trail);
  }
  painter.restore();
}

void ScopePainter::PlaceColumns(int first, const ScopeScreen& screen) {
  ScreenPixels(plate_.width(), plate_.height()).XOfPoints(scope_, screen, first, x_);
}

void ScopePainter::AppendPoints(std::vector<TracePoint>& points, std::size_t channel, int first,
                                const ScopeScreen& screen) const {
  // A screen may be empty altogether; loaded traces may lack a channel.
  if (channel >= screen.Values.size() || screen.Values[channel].empty()) return;
  const ScreenPixels pixels(plate_.width(), plate_.height());
  const ZelChannel& signal = *scope_.Channels()[channel];
  for (std::size_t i = 0; i < x_.size(); ++i) {
    const double value = screen.Values[channel][static_cast<std::size_t>(first) + i];
    points.push_back({x_[i], pixels.Y(signal, value), pixels.Beyond(signal, value)});
  }
}

bool ScopePainter::Differs(const ScopeScreen& screen) {
  if (drawn_ != screen.PointCount() || traces_.empty()) return true;
  if (KeptPoints(screen) != kept_) return true;
  PlaceColumns(0, screen);
  return std::any_of(traces_.begin(), traces_.end(), [&](const PaintedTrace& trace) {
    points_.clear();
    AppendPoints(points_, trace.Channel, 0, screen);
    return points_ != trace.Points;
  });
}

std::vector<std::optional<int>> ScopePainter::TraceEnds() const {
  std::vector<std::optional<int>> ends(labels_.Traces.size());
  for (std::size_t i = 0; i < ends.size() && i < traces_.size(); ++i) {
    if (!traces_[i].Points.empty()) ends[i] = traces_[i].Points.back().Y;
  }
  return ends;
}

std::optional<std::size_t> ScopePainter::TraceAt(const QPoint& point, double reach) const {
  std::optional<std::size_t> found;
  if (!plate_.contains(point)) return found;
  const QPointF from = point - plate_.topLeft();
  for (const PaintedTrace& trace : traces_) {
    for (std::size_t i = 1; i < trace.Points.size(); ++i) {
      const double distance = Distance(from, trace.Points[i - 1], trace.Points[i]);
      if (distance >= reach) continue;
      reach = distance;
      found = trace.Channel;
    }
  }
  return found;
}

void ScopePainter::PaintTags(QPainter& painter, const ScopeColours& colours) {
  marks_.PaintTags(painter, colours, TraceEnds());
}

}  // namespace torvane
