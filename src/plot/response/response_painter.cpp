#include "plot/response/response_painter.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <algorithm>
#include <cmath>

#include "core/text.h"
#include "plot/number_axis.h"
#include "plot/picture_fonts.h"
#include "plot/plot_layout.h"
#include "plot/qt_text.h"

namespace torvane {

namespace {

constexpr double SecondWidth = 0.9;  // where line patterns tell the traces apart
constexpr float FaintAlpha = 0.3F;   // of bins that are noise
constexpr double PointSize = 2.0;
constexpr double PointDistance = 7.0;     // bins that are closer are not marked
constexpr int WidestDelay = 7;            // and of delays
constexpr std::size_t DelayTail = 50;     // one of so many delays at each end is left out
constexpr double LeastDelayRange = 1e-9;  // seconds
constexpr double CoherenceShare = 0.17;   // of the plots' height

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

}  // namespace

void ResponsePainter::Layout(const QSize& size, double pixelRatio, const TraceLook& look) {
  look_ = look;
  size_ = size;
  ratio_ = pixelRatio;
  textFont_ = ScaledFont(QGuiApplication::font(), ratio_, 1.0);
  numberFont_ = NumberFont(ratio_);
  const QFontMetrics numbers(numberFont_);
  const QFontMetrics words(textFont_);
  const int margin = Scaled(PlotMargin);
  const int gap = Scaled(LabelGap);
  const int widest = analyser_.ShowsDelay() ? WidestDelay : WidestValueLabel;
  const int labels = margin + numbers.horizontalAdvance(QString(widest, u'0')) + gap;
  const int right = analyser_.SplitScreen() ? 2 * margin : labels;
  const int caption = words.height() + gap;
  const int bottom =
      legend_.Layout(size, ratio_, textFont_, look_) + words.height() + numbers.height() + 2 * gap;
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
  if (analyser_.ShowsDelay()) FitDelays();
  gainPlate_ = phasePlate_ = area;
  columns_.emplace(analyser_, area.width());
  if (!analyser_.SplitScreen()) return;
  const int height = (area.height() - caption - gap) / 2;
  gainPlate_.setHeight(height);
  phasePlate_.setTop(area.bottom() + 1 - height);
}

double ResponsePainter::ColumnOf(double hz) const {
  return analyser_.AxisShare(hz) * gainPlate_.width();
}

double ResponsePainter::YOf(const Axis& axis, double value) const {
  const double height = axis.Plate.height();
  const double up = (value + axis.Offset) / axis.Scale * height / VerticalDivisions;
  return std::clamp(axis.Plate.top() + height / 2.0 - up, -FarOutside, FarOutside);
}

// Traces, each on every axis.
int ResponsePainter::CurveCount() const {
  return ResponseLegend::DrawnCount(analyser_) * (coherencePlate_.isEmpty() ? 2 : 3);
}

bool ResponsePainter::ShowsCoherence() const {
  for (int slot = 0; slot < FrequencyAnalyser::SlotCount; ++slot) {
    if (ResponseLegend::IsDrawn(analyser_, slot) && analyser_.HasCoherence(slot)) return true;
  }
  return false;
}

std::vector<ResponsePainter::Axis> ResponsePainter::Axes() const {
  const bool single = !analyser_.SplitScreen();
  std::vector<Axis> axes{Axis{gainPlate_, analyser_.GainScale(), analyser_.GainOffset(),
                              "Gain (dB)", false, false, ResponseQuantity::Gain},
                         LowerAxis(single)};
  if (!coherencePlate_.isEmpty()) {
    // From 0 at the lower edge to 1 at the upper one.
    axes.push_back({coherencePlate_, 1.0 / VerticalDivisions, -0.5, "Coherence", false, false,
                    ResponseQuantity::Coherence});
  }
  return axes;
}

ResponsePainter::Axis ResponsePainter::LowerAxis(bool single) const {
  if (analyser_.ShowsDelay()) {
    return {phasePlate_, delayScale_, delayOffset_,           "Group delay (s)",
            single,      single,      ResponseQuantity::Delay};
  }
  return {phasePlate_, analyser_.PhaseScale(), analyser_.PhaseOffset(), "Phase (deg)", single,
          single,      ResponseQuantity::Phase};
}

// The delays of all traces within the frequency axis, the outliers of noise left out.
void ResponsePainter::FitDelays() {
  std::vector<double> delays;
  for (const int slot : PaintOrder) {
    if (!ResponseLegend::IsDrawn(analyser_, slot)) continue;
    const Response& response = analyser_.ShownResponse(slot);
    for (int i = response.First(); i < response.End(); ++i) {
      const ResponsePoint& point = *response.At(i);
      const bool seen = point.Hz >= analyser_.FreqMin() && point.Hz <= analyser_.FreqMax();
      const auto delay = response.ValueOf(ResponseQuantity::Delay, i);
      if (seen && point.Excited && delay) delays.push_back(*delay);
    }
  }
  const std::size_t tail = delays.size() / DelayTail;
  const auto at = [&](std::size_t rank) {
    if (delays.empty()) return 0.0;
    const auto place = delays.begin() + static_cast<std::ptrdiff_t>(rank);
    std::nth_element(delays.begin(), place, delays.end());
    return *place;
  };
  const double low = std::min(0.0, at(tail));
  const double high = std::max(0.0, at(delays.size() - 1 - tail));
  const int divisions = VerticalDivisions;
  delayScale_ = RoundStep(std::max(high - low, LeastDelayRange) / (divisions - 1));
  delayOffset_ = -(std::floor(low / delayScale_) + divisions / 2) * delayScale_;
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
    for (const int slot : PaintOrder) {
      const bool measured =
          axis.Quantity != ResponseQuantity::Coherence || analyser_.HasCoherence(slot);
      if (ResponseLegend::IsDrawn(analyser_, slot) && measured)
        PaintTrace(painter, colours, axis, slot);
    }
  }
  legend_.Paint(painter, colours);
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
    const QString label = QtText(FormatGeneral(hz, 4, 1));
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
                     QtText(FormatGeneral(value, 4, 1)));
  }
  painter.setFont(textFont_);
  const int height = QFontMetrics(textFont_).height();
  const QString caption =
      QLatin1String(axis.Caption) + QLatin1String(!axis.Second     ? ""
                                                  : look_.Patterns ? ", thin"
                                                                   : ", dashed");
  painter.drawText(QRect(plate.left(), plate.top() - height - gap / 2, plate.width(), height),
                   axis.OnRight ? Qt::AlignRight : Qt::AlignLeft, caption);
}

void ResponsePainter::PaintTrace(QPainter& painter, const ScopeColours& colours, const Axis& axis,
                                 int slot) const {
  const QRect& plate = axis.Plate;
  const ResponseLines trace =
      MakeResponseLines(analyser_.ShownResponse(slot), axis.Quantity, *columns_);
  TracePen pen = ResponsePen(colours, look_, slot);
  if (axis.Second && !look_.Patterns) pen.Dashes = {6.0, 3.0};
  const double width = axis.Second && look_.Patterns ? SecondWidth : ResponseWidth(slot);
  painter.save();
  painter.setClipRect(plate);
  painter.setRenderHint(QPainter::Antialiasing);
  CurvePainter curve(painter, plate, pen, width, ratio_, CurveCount());
  QColor faint = pen.Colour;
  faint.setAlphaF(FaintAlpha);
  PaintBars(curve, axis, slot, trace.Faint, faint);
  PaintBars(curve, axis, slot, trace.Bars, pen.Colour);
  std::vector<QPolygonF> lines = trace.Lines;
  for (QPolygonF& line : lines) {
    for (QPointF& point : line) point = {plate.left() + point.x(), YOf(axis, point.y())};
    line = Simplified(line);
  }
  curve.PaintLines(lines);
  PaintTraceMarks(painter, colours, axis, slot, trace);
  painter.restore();
}

// As thick as a line's stroke would be.
void ResponsePainter::PaintBars(CurvePainter& curve, const Axis& axis, int slot,
                                const std::vector<ResponseLines::Bar>& bars,
                                const QColor& colour) const {
  const double half = ResponseWidth(slot) * ratio_ / 2.0;
  std::vector<CurvePainter::Column> columns;
  columns.reserve(bars.size());
  for (const ResponseLines::Bar& bar : bars) {
    columns.push_back(
        {axis.Plate.left() + bar.X, YOf(axis, bar.High) - half, YOf(axis, bar.Low) + half});
  }
  curve.PaintColumns(columns, colour);
}

// A memory's marks along its trace; of the current measurement, the bins that stand apart.
void ResponsePainter::PaintTraceMarks(QPainter& painter, const ScopeColours& colours,
                                      const Axis& axis, int slot,
                                      const ResponseLines& trace) const {
  const auto at = [&](double column, double value) {
    return QPointF(axis.Plate.left() + column, YOf(axis, value));
  };
  if (slot == FrequencyAnalyser::TheorySlot) return;
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
  painter.setPen(QPen(colours.Trace(slot), ResponseWidth(slot) * ratio_));
  const int distance = Scaled(MarkDistance);
  const int columns = static_cast<int>(trace.Columns.size());
  // Marks of one memory stand beside those of another.
  for (int x = slot * distance / FrequencyAnalyser::SlotCount; x < columns; x += distance) {
    const double value = trace.Columns[static_cast<std::size_t>(x)];
    if (!std::isnan(value)) PaintMemoryMark(painter, colours.Plate, slot, at(x, value), ratio_);
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
      const auto value = analyser_.Read(axis.Quantity, slot, hz);
      if (!value) continue;
      painter.setPen(QPen(colours.Cursor, ResponseWidth(slot) * ratio_));
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
    if (axis.Quantity != mark.Quantity) continue;
    const QPointF from(axis.Plate.left() + ColumnOf(mark.Hz), YOf(axis, mark.From));
    const QPointF to(from.x(), YOf(axis, mark.To));
    painter.setClipRect(axis.Plate);
    painter.setPen(QPen(colours.Cursor, ResponseWidth(0) * ratio_));
    painter.drawLine(from, to);
    painter.setBrush(colours.Cursor);
    painter.drawEllipse(to, r, r);
    // To the side on which there is room, above or below what falls with frequency.
    const QFontMetrics metrics(numberFont_);
    const QString text = QtText(mark.Text);
    const int width = metrics.horizontalAdvance(text);
    const double gap = r + Scaled(LabelGap);
    const bool left = to.x() + gap + width > axis.Plate.right();
    const double base = std::clamp(left ? to.y() + gap + metrics.ascent() : to.y() - gap,
                                   axis.Plate.top() + 1.0 * metrics.ascent(),
                                   axis.Plate.bottom() - 1.0 * metrics.descent());
    painter.setPen(colours.Text);
    painter.drawText(QPointF(left ? to.x() - gap - width : to.x() + gap, base), text);
  }
  painter.restore();
}

}  // namespace torvane
