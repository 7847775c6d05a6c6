#include "plot/scope/cursor_painter.h"

#include <QFontDatabase>
#include <QFontMetrics>
#include <algorithm>
#include <cmath>
#include <utility>

#include "core/text.h"
#include "instruments/scope/scope_cursors.h"
#include "plot/picture_fonts.h"

namespace torvane {

namespace {

constexpr double NoteGap = 5.0;  // from a cursor to its reading
constexpr double NotePadding = 4.0;
constexpr double PointRadius = 3.5;  // of the point read on the trace
constexpr int UsualWidth = 14;       // characters of a reading that always have room

QString Quantity(const std::string& name, double value, const std::string& unit) {
  return QString::fromStdString(name + " " + FormatEdit(value) + (unit.empty() ? "" : " " + unit));
}

// Of the time between two cursors; seconds give a frequency.
QString Inverse(double time, const std::string& unit) {
  if (time == 0.0) return QStringLiteral("1/dt  -");
  return Quantity("1/dt", 1.0 / time, unit == "sec" ? "Hz" : "1/" + unit);
}

}  // namespace

void CursorPainter::Layout(const QRect& plate, double ratio) {
  plate_ = plate;
  ratio_ = ratio;
  font_ = ScaledFont(QFontDatabase::systemFont(QFontDatabase::FixedFont), ratio_, 0.9);
  notes_.clear();
}

bool CursorPainter::Read(const ScopeScreen& screen, const ZelChannel* channel) {
  const std::vector<Note> notesBefore = std::exchange(notes_, {});
  const std::vector<QPoint> pointsBefore = std::exchange(points_, {});
  if (!scope_.XYMode() && scope_.Cursors().Mode > 0) {
    std::optional<std::size_t> shown;
    for (const std::size_t k : scope_.DisplayedChannels()) {
      if (scope_.Channels()[k].get() == channel) shown = k;
    }
    std::vector<Reading> readings;
    for (int k = 0; k < scope_.Cursors().Mode; ++k) {
      const int x = scope_.Cursors().X[static_cast<std::size_t>(k)];
      if (const auto reading = ReadAt(x, screen, shown)) readings.push_back(*reading);
    }
    NoteReadings(readings, shown ? &channel->Signal() : nullptr);
  }
  return notes_ != notesBefore || points_ != pointsBefore;
}

std::optional<CursorPainter::Reading> CursorPainter::ReadAt(int x, const ScopeScreen& screen,
                                                            std::optional<std::size_t> channel) {
  const ScreenPixels pixels(plate_.width(), plate_.height());
  const auto point = PointAtCursor(scope_, screen, pixels, x);
  if (!point || x >= plate_.width()) return std::nullopt;
  const ZelChannel& time = scope_.TimeChannel();
  const double start = screen.Time.front();
  Reading reading{x, time.Signal().Multiplier() * (screen.Time[*point] - start), 0.0};
  if (channel) {
    const ZelChannel& trace = *scope_.Channels()[*channel];
    const double value = screen.Values[*channel][*point];
    reading.Value = trace.Signal().Multiplier() * value;
    points_.push_back(plate_.topLeft() + QPoint(pixels.TimeX(time, screen.Time[*point], start),
                                                pixels.Y(trace, value)));
  }
  return reading;
}

// Differences are those from the earlier point to the later one, whichever cursor it is.
void CursorPainter::NoteReadings(const std::vector<Reading>& readings, const Variable* signal) {
  const std::string& second = scope_.TimeChannel().Signal().Unit();
  for (std::size_t k = 0; k < readings.size(); ++k) {
    const bool first = readings[k].X == scope_.Cursors().X[0] && k == 0;
    QStringList lines{Quantity(first ? "1:" : "2:", readings[k].Time, second)};
    if (signal) lines << Quantity(signal->Name(), readings[k].Value, signal->Unit());
    PlaceNote(lines, readings[k].X, true);
  }
  if (readings.size() != 2) return;
  const bool swapped = readings[1].Time < readings[0].Time;
  const Reading& from = readings[swapped ? 1 : 0];
  const Reading& to = readings[swapped ? 0 : 1];
  const double time = to.Time - from.Time;
  QStringList lines{Quantity("dt", time, second), Inverse(time, second)};
  if (signal) lines << Quantity("d" + signal->Name(), to.Value - from.Value, signal->Unit());
  PlaceNote(lines, std::min(from.X, to.X), false);
}

// To the right of its cursor, or to the left where there is no room. The differences stand at the
// bottom.
void CursorPainter::PlaceNote(QStringList lines, int x, bool atTop) {
  const QFontMetrics metrics(font_);
  int width = metrics.horizontalAdvance(QString(UsualWidth, u'0'));
  for (const QString& line : lines) width = std::max(width, metrics.horizontalAdvance(line));
  const int padding = Scaled(NotePadding);
  const int gap = Scaled(NoteGap);
  QRect box(0, 0, width + 2 * padding, static_cast<int>(lines.size()) * metrics.height() + padding);
  const bool fits = x + gap + box.width() < plate_.width();
  box.moveLeft(plate_.left() + (fits ? x + gap : std::max(0, x - gap - box.width())));
  const int edge = 2 * metrics.height();
  box.moveTop(atTop ? plate_.top() + Scaled(10.0) : plate_.bottom() - edge - box.height());
  for (const Note& other : notes_) {
    if (box.intersects(other.Box)) box.moveTop(other.Box.bottom() + gap);
  }
  notes_.push_back({std::move(lines), box});
}

QRect CursorPainter::Area() const {
  QRect area;
  for (const Note& note : notes_) area |= note.Box;
  const int radius = Scaled(PointRadius) + 2;
  for (const QPoint& point : points_) {
    area |= QRect(point, QSize(1, 1)).adjusted(-radius, -radius, radius, radius);
  }
  return area.adjusted(-1, -1, 1, 1);
}

// Numbered, for the keyboard and the read-out name them so.
void CursorPainter::Paint(QPainter& painter, const ScopeColours& colours) const {
  if (scope_.XYMode()) return;
  const ScopeCursors& cursors = scope_.Cursors();
  painter.save();
  painter.setFont(font_);
  painter.setPen(QPen(colours.Cursor, std::max(1, Scaled(1.0)), Qt::DashLine));
  for (int k = 0; k < cursors.Mode; ++k) {
    const int x = plate_.left() + cursors.X[static_cast<std::size_t>(k)];
    if (x > plate_.right()) continue;
    painter.drawLine(x, plate_.top(), x, plate_.bottom());
    painter.drawText(x + Scaled(NoteGap), plate_.bottom() - Scaled(NoteGap),
                     QString::number(k + 1));
  }
  for (const Note& note : notes_) PaintNote(painter, colours, note);
  painter.setClipRect(plate_, Qt::IntersectClip);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(colours.Cursor, 1.5 * ratio_));
  painter.setBrush(colours.Plate);
  for (const QPoint& point : points_) {
    painter.drawEllipse(QPointF(point), PointRadius * ratio_, PointRadius * ratio_);
  }
  painter.restore();
}

void CursorPainter::PaintNote(QPainter& painter, const ScopeColours& colours,
                              const Note& note) const {
  QColor ground = colours.Around;
  ground.setAlpha(230);
  painter.fillRect(note.Box, ground);
  painter.setPen(QPen(colours.Cursor, std::max(1, Scaled(1.0))));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(note.Box.adjusted(0, 0, -1, -1));
  painter.setPen(colours.Text);
  painter.drawText(note.Box.adjusted(Scaled(NotePadding), 0, 0, 0),
                   Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, note.Lines.join(u'\n'));
}

}  // namespace torvane
