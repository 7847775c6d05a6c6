#include "plot/response_painter.h"

#include <QFontDatabase>
#include <QFontMetrics>
#include <QGuiApplication>
#include <algorithm>
#include <cmath>

#include "core/text.h"
#include "plot/picture_fonts.h"

namespace torvane {

namespace {

constexpr double Margin = 8.0;
constexpr double LabelGap = 5.0;
constexpr double EntryGap = 18.0;  // between two entries of the legend
constexpr double TraceWidth = 1.6;
constexpr double SampleLength = 26.0;  // of a trace in the legend
constexpr double MarkSize = 3.4;       // from its middle
constexpr double MarkDistance = 75.0;  // along the frequency axis
constexpr float FaintAlpha = 0.3F;     // of bins that are noise
constexpr double PointSize = 2.0;
constexpr double PointDistance = 7.0;  // bins that are closer are not marked
constexpr int WidestTick = 5;          // characters of the value labels
constexpr int SmallestPlate = 40;
constexpr double CoherenceShare = 0.17;  // of the plots' height
constexpr double FarOutside = 3e4;       // beyond it the line drawing of some devices overflows

QString Text(const std::string& text) {
  return QString::fromStdString(text);
}

// Two decades or less have room for labels between the powers of ten.
bool IsLabelled(int mantissa, double decades) {
  return mantissa == 1 || (decades <= 2.5 && (mantissa == 2 || mantissa == 5));
}

// Calls paint(hz, mantissa) for every whole mantissa from 1 to 9 of each decade within the range.
template <class PaintLine>
void ForEachFrequencyLine(double low, double high, PaintLine paint) {
  const int first = static_cast<int>(std::floor(std::log10(low)));
  const int last = static_cast<int>(std::ceil(std::log10(high)));
  for (int decade = first; decade <= last; ++decade) {
    for (int mantissa = 1; mantissa <= 9; ++mantissa) {
      const double hz = mantissa * std::pow(10.0, decade);
      // A line on the limit itself is drawn whatever the rounding.
      if (hz >= low * (1.0 - 1e-9) && hz <= high * (1.0 + 1e-9)) paint(hz, mantissa);
    }
  }
}

std::string ScaleText(const char* unit, double perDivision, double offset) {
  return FormatEdit(perDivision) + " " + unit + "/div (Off: " + FormatEdit(offset) + ")";
}

}  // namespace

void ResponsePainter::Layout(const QSize& size, double pixelRatio) {
  size_ = size;
  ratio_ = pixelRatio;
  textFont_ = ScaledFont(QGuiApplication::font(), ratio_, 1.0);
  numberFont_ = ScaledFont(QFontDatabase::systemFont(QFontDatabase::FixedFont), ratio_, 0.92);
  const QFontMetrics numbers(numberFont_);
  const QFontMetrics words(textFont_);
  const int margin = Scaled(Margin);
  const int gap = Scaled(LabelGap);
  const int labels = margin + numbers.horizontalAdvance(QString(WidestTick, u'0')) + gap;
  const int right = analyser_.SplitScreen() ? 2 * margin : labels;
  const int caption = words.height() + gap;
  MakeLegend();
  const int bottom = PlaceLegend() + words.height() + numbers.height() + 2 * gap;
  const QRect whole(labels, caption + gap, std::max(SmallestPlate, size.width() - labels - right),
                    std::max(2 * SmallestPlate, size.height() - bottom - caption - gap));
  QRect area = whole;
  coherencePlate_ = {};
  if (ShowsCoherence()) {
    const int height = std::max(SmallestPlate, qRound(CoherenceShare * whole.height()));
    coherencePlate_ = whole;
    coherencePlate_.setTop(whole.bottom() + 1 - height);
    area.setBottom(coherencePlate_.top() - caption - gap);
  }
  gainPlate_ = phasePlate_ = area;
  if (!analyser_.SplitScreen()) return;
  const int height = (area.height() - caption - gap) / 2;
  gainPlate_.setHeight(height);
  phasePlate_.setTop(area.bottom() + 1 - height);
}

double ResponsePainter::ColumnOf(double hz) const {
  const double low = analyser_.FreqMin();
  return std::log(hz / low) / std::log(analyser_.FreqMax() / low) * gainPlate_.width();
}

double ResponsePainter::YOf(const Axis& axis, double value) const {
  const double height = axis.Plate.height();
  const double up = (value + axis.Offset) / axis.Scale * height / VerticalDivisions;
  return std::clamp(axis.Plate.top() + height / 2.0 - up, -FarOutside, FarOutside);
}

bool ResponsePainter::ShowsCoherence() const {
  for (int slot = 0; slot < FrequencyAnalyser::SlotCount; ++slot) {
    if (IsDrawn(slot) && analyser_.HasCoherence(slot)) return true;
  }
  return false;
}

bool ResponsePainter::IsDrawn(int slot) const {
  return analyser_.TraceAt(slot).Shown && analyser_.HasData(slot);
}

std::vector<ResponsePainter::Axis> ResponsePainter::Axes() const {
  const bool single = !analyser_.SplitScreen();
  std::vector<Axis> axes{Axis{gainPlate_, analyser_.GainScale(), analyser_.GainOffset(),
                              "Gain (dB)", false, false, ResponseQuantity::Gain},
                         Axis{phasePlate_, analyser_.PhaseScale(), analyser_.PhaseOffset(),
                              "Phase (deg)", single, single, ResponseQuantity::Phase}};
  if (!coherencePlate_.isEmpty()) {
    // From 0 at the lower edge to 1 at the upper one.
    axes.push_back({coherencePlate_, 1.0 / VerticalDivisions, -0.5, "Coherence", false, false,
                    ResponseQuantity::Coherence});
  }
  return axes;
}

// The current measurement is always spoken of.
bool ResponsePainter::Unavailable(int slot) const {
  return !analyser_.HasData(slot) && (slot == 0 || analyser_.TraceAt(slot).Shown);
}

std::string ResponsePainter::TraceText(int slot) const {
  const std::string name = slot == 0 ? "Current" : "Memory " + std::to_string(slot);
  if (Unavailable(slot)) return name + ": Unavailable";
  if (const std::string& from = analyser_.LoadedFrom(slot); !from.empty()) return name + " " + from;
  std::vector<const TraceOrigin*> origins;
  for (int other = 0; other < FrequencyAnalyser::SlotCount; ++other) {
    if (analyser_.HasData(other) && analyser_.LoadedFrom(other).empty())
      origins.push_back(&analyser_.Origin(other));
  }
  return name + " " + OriginText(analyser_.Origin(slot), origins);
}

void ResponsePainter::MakeLegend() {
  std::string pair;
  if (analyser_.Output()) pair = analyser_.Output()->Name();
  if (analyser_.Input() && !analyser_.OutputOnly()) pair += " / " + analyser_.Input()->Name();
  legend_.clear();
  for (const std::string& text :
       {pair, ScaleText("dB", analyser_.GainScale(), analyser_.GainOffset()),
        ScaleText("deg", analyser_.PhaseScale(), analyser_.PhaseOffset()),
        FormatEdit(analyser_.FreqMin()) + " Hz to " + FormatEdit(analyser_.FreqMax()) + " Hz"}) {
    legend_.push_back({-1, text, {}});
  }
  for (int slot = 0; slot < FrequencyAnalyser::SlotCount; ++slot) {
    if (IsDrawn(slot) || Unavailable(slot)) legend_.push_back({slot, TraceText(slot), {}});
  }
}

// Rows from the lower edge of the picture upwards; gives what they take of its height.
int ResponsePainter::PlaceLegend() {
  const QFontMetrics metrics(textFont_);
  const int margin = Scaled(Margin);
  const int height = metrics.height();
  int x = margin;
  int y = 0;
  for (LegendEntry& entry : legend_) {
    const int sample = entry.Slot < 0 ? 0 : Scaled(SampleLength + LabelGap);
    const int width = sample + metrics.horizontalAdvance(Text(entry.Text)) + Scaled(2.0);
    const bool firstTrace = entry.Slot == 0 || (entry.Slot > 0 && (&entry - 1)->Slot < 0);
    if (x > margin && (firstTrace || x + width > size_.width() - margin)) {
      x = margin;
      y += height;
    }
    entry.Place = {x, y, width, height};
    x += width + Scaled(EntryGap);
  }
  const int taken = y + height + margin;
  for (LegendEntry& entry : legend_) entry.Place.translate(0, size_.height() - taken);
  return taken + Scaled(LabelGap);
}

void ResponsePainter::Paint(QPainter& painter, const ScopeColours& colours) {
  painter.fillRect(QRect(QPoint(0, 0), size_), colours.Around);
  painter.fillRect(gainPlate_, colours.Plate);
  PaintFrequencyLines(painter, colours, gainPlate_);
  if (analyser_.SplitScreen()) {
    painter.fillRect(phasePlate_, colours.Plate);
    PaintFrequencyLines(painter, colours, phasePlate_);
  }
  if (!coherencePlate_.isEmpty()) {
    painter.fillRect(coherencePlate_, colours.Plate);
    PaintFrequencyLines(painter, colours, coherencePlate_);
  }
  PaintFrequencyLabels(painter, colours);
  for (const Axis& axis : Axes()) {
    PaintAxis(painter, colours, axis);
    // The current measurement lies on top.
    for (int slot = FrequencyAnalyser::SlotCount - 1; slot >= 0; --slot) {
      const bool measured =
          axis.Quantity != ResponseQuantity::Coherence || analyser_.HasCoherence(slot);
      if (IsDrawn(slot) && measured) PaintTrace(painter, colours, axis, slot);
    }
  }
  PaintLegend(painter, colours);
}

void ResponsePainter::PaintFrequencyLines(QPainter& painter, const ScopeColours& colours,
                                          const QRect& plate) const {
  ForEachFrequencyLine(analyser_.FreqMin(), analyser_.FreqMax(), [&](double hz, int mantissa) {
    const int x = plate.left() + qRound(ColumnOf(hz));
    painter.setPen(QPen(mantissa == 1 ? colours.Axis : colours.Grid, std::max(1, Scaled(1.0))));
    painter.drawLine(x, plate.top(), x, plate.bottom());
  });
  painter.setPen(QPen(colours.Axis, std::max(1, Scaled(1.0))));
  painter.drawRect(plate.adjusted(0, 0, -1, -1));
}

void ResponsePainter::PaintFrequencyLabels(QPainter& painter, const ScopeColours& colours) const {
  painter.setFont(numberFont_);
  painter.setPen(colours.Text);
  const QFontMetrics metrics(numberFont_);
  const double decades = std::log10(analyser_.FreqMax() / analyser_.FreqMin());
  const QRect& lowest = coherencePlate_.isEmpty() ? phasePlate_ : coherencePlate_;
  const int top = lowest.bottom() + Scaled(LabelGap);
  int free = 0;
  ForEachFrequencyLine(analyser_.FreqMin(), analyser_.FreqMax(), [&](double hz, int mantissa) {
    if (!IsLabelled(mantissa, decades)) return;
    const QString label = Text(FormatGeneral(hz, 4, 1));
    const int width = metrics.horizontalAdvance(label);
    const int left =
        std::min(phasePlate_.left() + qRound(ColumnOf(hz)) - width / 2, size_.width() - width - 1);
    if (left < free) return;
    painter.drawText(QRect(left, top, width, metrics.height()), Qt::AlignCenter | Qt::TextDontClip,
                     label);
    free = left + width + Scaled(LabelGap);
  });
  painter.setFont(textFont_);
  painter.drawText(QRect(phasePlate_.left(), top + metrics.height(), phasePlate_.width(),
                         QFontMetrics(textFont_).height()),
                   Qt::AlignCenter, QStringLiteral("Freq (Hz)"));
}

// Division lines with their values, and the caption above the plate's corner.
void ResponsePainter::PaintAxis(QPainter& painter, const ScopeColours& colours,
                                const Axis& axis) const {
  const QRect& plate = axis.Plate;
  const QFontMetrics metrics(numberFont_);
  const int gap = Scaled(LabelGap);
  painter.setFont(numberFont_);
  const int division = plate.height() / VerticalDivisions;
  const int step = axis.Quantity == ResponseQuantity::Coherence ? VerticalDivisions / 2
                   : division >= metrics.height()               ? 1
                   : 2 * division >= metrics.height()           ? 2
                                                                : 3;
  for (int line = 0; line <= VerticalDivisions; ++line) {
    const int y = plate.top() + line * (plate.height() - 1) / VerticalDivisions;
    if (line > 0 && line < VerticalDivisions && !axis.OnRight) {
      painter.setPen(QPen(2 * line == VerticalDivisions ? colours.Axis : colours.Grid,
                          std::max(1, Scaled(1.0))));
      painter.drawLine(plate.left(), y, plate.right(), y);
    }
    if ((line - VerticalDivisions / 2) % step != 0) continue;
    const double value = (VerticalDivisions / 2 - line) * axis.Scale - axis.Offset;
    const int top = y - metrics.height() / 2;
    const QRect place = axis.OnRight
                            ? QRect(plate.right() + gap, top, size_.width(), metrics.height())
                            : QRect(0, top, plate.left() - gap, metrics.height());
    painter.setPen(colours.Text);
    painter.drawText(place, (axis.OnRight ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter,
                     Text(FormatGeneral(value, 4, 1)));
  }
  painter.setFont(textFont_);
  const int height = QFontMetrics(textFont_).height();
  const QString caption =
      QString::fromLatin1(axis.Caption) + QLatin1String(axis.Dashed ? ", dashed" : "");
  painter.drawText(QRect(plate.left(), plate.top() - height - gap / 2, plate.width(), height),
                   axis.OnRight ? Qt::AlignRight : Qt::AlignLeft, caption);
}

QPen ResponsePainter::TracePen(const ScopeColours& colours, int slot, bool dashed) const {
  return {colours.Trace(slot), TraceWidth * ratio_, dashed ? Qt::DashLine : Qt::SolidLine,
          Qt::FlatCap, Qt::BevelJoin};
}

void ResponsePainter::PaintTrace(QPainter& painter, const ScopeColours& colours, const Axis& axis,
                                 int slot) const {
  const QRect& plate = axis.Plate;
  const ResponseLines trace = MakeResponseLines(analyser_, slot, axis.Quantity, plate.width());
  painter.save();
  painter.setClipRect(plate);
  painter.setRenderHint(QPainter::Antialiasing);
  QColor faint = colours.Trace(slot);
  faint.setAlphaF(FaintAlpha);
  PaintBars(painter, axis, trace.Faint, faint);
  PaintBars(painter, axis, trace.Bars, colours.Trace(slot));
  painter.setPen(TracePen(colours, slot, axis.Dashed));
  for (QPolygonF line : trace.Lines) {
    for (QPointF& point : line) point = {plate.left() + point.x(), YOf(axis, point.y())};
    painter.drawPolyline(line);
  }
  PaintTraceMarks(painter, colours, axis, slot, trace);
  painter.restore();
}

// As thick as a line's stroke would be. A dashed trace's are fainter.
void ResponsePainter::PaintBars(QPainter& painter, const Axis& axis,
                                const std::vector<ResponseLines::Bar>& bars, QColor colour) const {
  if (axis.Dashed) colour.setAlphaF(0.5F);
  const double half = TraceWidth * ratio_ / 2.0;
  for (const ResponseLines::Bar& bar : bars) {
    const double top = YOf(axis, bar.High) - half;
    const double height = YOf(axis, bar.Low) + half - top;
    painter.fillRect(QRectF(axis.Plate.left() + bar.X, top, 1.0, height), colour);
  }
}

// A memory's marks along its trace; of the current measurement, the bins that stand apart.
void ResponsePainter::PaintTraceMarks(QPainter& painter, const ScopeColours& colours,
                                      const Axis& axis, int slot,
                                      const ResponseLines& trace) const {
  const auto at = [&](double column, double value) {
    return QPointF(axis.Plate.left() + column, YOf(axis, value));
  };
  if (slot == 0) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(colours.Trace(slot));
    for (qsizetype i = 0; i < trace.Points.size(); ++i) {
      const QPointF& point = trace.Points[i];
      const bool apart = i == 0 || point.x() - trace.Points[i - 1].x() > Scaled(PointDistance);
      if (apart)
        painter.drawEllipse(at(point.x(), point.y()), PointSize * ratio_, PointSize * ratio_);
    }
    return;
  }
  painter.setPen(TracePen(colours, slot, false));
  const int distance = Scaled(MarkDistance);
  const int columns = static_cast<int>(trace.Columns.size());
  // Marks of one memory stand beside those of another.
  for (int x = slot * distance / FrequencyAnalyser::SlotCount; x < columns; x += distance) {
    const double value = trace.Columns[static_cast<std::size_t>(x)];
    if (!std::isnan(value)) PaintTraceMark(painter, colours.Plate, slot, at(x, value));
  }
}

void ResponsePainter::PaintTraceMark(QPainter& painter, const QColor& fill, int slot,
                                     const QPointF& at) const {
  const double r = MarkSize * ratio_;
  painter.setBrush(fill);
  const auto corners = [&](std::initializer_list<QPointF> points) {
    QPolygonF polygon;
    for (const QPointF& point : points) polygon << at + r * point;
    painter.drawPolygon(polygon);
  };
  switch (slot) {
    case 1:
      painter.drawEllipse(at, r, r);
      break;
    case 2:
      corners({{-0.9, -0.9}, {0.9, -0.9}, {0.9, 0.9}, {-0.9, 0.9}});
      break;
    case 3:
      corners({{0.0, -1.2}, {1.2, 0.9}, {-1.2, 0.9}});
      break;
    default:
      corners({{0.0, -1.3}, {1.3, 0.0}, {0.0, 1.3}, {-1.3, 0.0}});
  }
}

void ResponsePainter::PaintLegend(QPainter& painter, const ScopeColours& colours) const {
  painter.setFont(textFont_);
  for (const LegendEntry& entry : legend_) {
    QRect place = entry.Place;
    if (entry.Slot >= 0) {
      const QRect sample(place.left(), place.top(), Scaled(SampleLength), place.height());
      const int y = sample.center().y();
      painter.save();
      painter.setRenderHint(QPainter::Antialiasing);
      painter.fillRect(sample.adjusted(0, Scaled(2.0), 0, -Scaled(2.0)), colours.Plate);
      painter.setPen(TracePen(colours, entry.Slot, false));
      painter.drawLine(QPointF(sample.left(), y + 0.5), QPointF(sample.right() + 1, y + 0.5));
      if (entry.Slot > 0) {
        PaintTraceMark(painter, colours.Plate, entry.Slot, QRectF(sample).center());
      }
      painter.restore();
      place.setLeft(sample.right() + Scaled(LabelGap));
    }
    painter.setPen(colours.Text);
    painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, Text(entry.Text));
  }
}

// Numbered; the second one is dotted.
void ResponsePainter::PaintCursors(QPainter& painter, const ScopeColours& colours) {
  painter.save();
  painter.setFont(numberFont_);
  for (int cursor = 0; cursor < static_cast<int>(analyser_.Cursors()); ++cursor) {
    const int column = analyser_.CursorPixel(cursor);
    if (column >= gainPlate_.width()) continue;
    const double hz = analyser_.AxisFrequency(static_cast<double>(column) / gainPlate_.width());
    for (const Axis& axis : Axes()) {
      const int x = axis.Plate.left() + column;
      painter.setPen(
          QPen(colours.Cursor, std::max(1, Scaled(1.0)), cursor == 0 ? Qt::DashLine : Qt::DotLine));
      painter.drawLine(x, axis.Plate.top(), x, axis.Plate.bottom());
      painter.drawText(x + Scaled(3.0), axis.Plate.bottom() - Scaled(LabelGap),
                       QString::number(cursor + 1));
      const int slot = analyser_.CursorSlot();
      if (!analyser_.TraceAt(slot).Shown) continue;
      const auto value = axis.Quantity == ResponseQuantity::Gain    ? analyser_.GainRead(slot, hz)
                         : axis.Quantity == ResponseQuantity::Phase ? analyser_.PhaseRead(slot, hz)
                                                                    : std::optional<double>();
      if (!value) continue;
      painter.setPen(QPen(colours.Cursor, TraceWidth * ratio_));
      painter.setRenderHint(QPainter::Antialiasing);
      painter.setClipRect(axis.Plate);
      painter.drawEllipse(QPointF(x, YOf(axis, *value)), Scaled(4.0), Scaled(4.0));
      painter.setClipping(false);
      painter.setRenderHint(QPainter::Antialiasing, false);
    }
  }
  painter.restore();
}

void ResponsePainter::PaintMarks(QPainter& painter, const ScopeColours& colours,
                                 const std::vector<ResponseMark>& marks) const {
  painter.save();
  painter.setFont(numberFont_);
  painter.setRenderHint(QPainter::Antialiasing);
  const double r = MarkSize * ratio_;
  const std::vector<Axis> axes = Axes();
  for (const ResponseMark& mark : marks) {
    const Axis& axis = axes[mark.Quantity == ResponseQuantity::Gain ? 0 : 1];
    const QPointF from(axis.Plate.left() + ColumnOf(mark.Hz), YOf(axis, mark.From));
    const QPointF to(from.x(), YOf(axis, mark.To));
    painter.setClipRect(axis.Plate);
    painter.setPen(QPen(colours.Cursor, TraceWidth * ratio_));
    painter.drawLine(from, to);
    painter.setBrush(colours.Cursor);
    painter.drawEllipse(to, r, r);
    // To the side on which there is room.
    const QFontMetrics metrics(numberFont_);
    const QString text = Text(mark.Text);
    const int width = metrics.horizontalAdvance(text);
    const double gap = r + Scaled(LabelGap);
    const bool left = to.x() + gap + width > axis.Plate.right();
    painter.setPen(colours.Text);
    painter.drawText(QPointF(left ? to.x() - gap - width : to.x() + gap, to.y() - gap), text);
  }
  painter.restore();
}

}  // namespace torvane
