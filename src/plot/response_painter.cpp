#include "plot/response_painter.h"

#include <QFontDatabase>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QPolygonF>
#include <cmath>
#include <limits>

#include "core/text.h"
#include "plot/picture_fonts.h"

namespace torvane {

namespace {

constexpr double Margin = 8.0;
constexpr double LabelGap = 5.0;
constexpr double TraceWidth = 1.6;
constexpr int WidestTick = 5;  // characters of the value labels
constexpr int SmallestPlate = 40;
constexpr double FarOutside = 3e4;  // beyond it the line drawing of some devices overflows

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

}  // namespace

void ResponsePainter::Layout(const QSize& size, double pixelRatio) {
  size_ = size;
  ratio_ = pixelRatio;
  textFont_ = ScaledFont(QGuiApplication::font(), ratio_, 1.0);
  numberFont_ = ScaledFont(QFontDatabase::systemFont(QFontDatabase::FixedFont), ratio_, 0.92);
  const QFontMetrics numbers(numberFont_);
  const QFontMetrics words(textFont_);
  const int margin = Scaled(Margin);
  const int labels =
      margin + numbers.horizontalAdvance(QString(WidestTick, u'0')) + Scaled(LabelGap);
  const int right = analyser_.SplitScreen() ? 2 * margin : labels;
  const int caption = words.height() + Scaled(LabelGap);
  const int bottom = numbers.height() + caption + 2 * margin;
  const QRect area(labels, margin + caption, std::max(SmallestPlate, size.width() - labels - right),
                   std::max(2 * SmallestPlate, size.height() - bottom - margin - caption));
  gainPlate_ = phasePlate_ = area;
  if (!analyser_.SplitScreen()) return;
  const int height = (area.height() - caption - margin) / 2;
  gainPlate_.setHeight(height);
  phasePlate_.setTop(area.bottom() + 1 - height);
}

double ResponsePainter::FrequencyAt(double x) const {
  const double low = analyser_.FreqMin();
  return low * std::pow(analyser_.FreqMax() / low, x / gainPlate_.width());
}

double ResponsePainter::ColumnOf(double hz) const {
  const double low = analyser_.FreqMin();
  return std::log(hz / low) / std::log(analyser_.FreqMax() / low) * gainPlate_.width();
}

std::vector<ResponsePainter::Axis> ResponsePainter::Axes() const {
  const bool single = !analyser_.SplitScreen();
  const auto gain = [this](int slot, double hz) { return analyser_.GainAt(slot, hz); };
  const auto phase = [this](int slot, double hz) { return PhaseOrGap(slot, hz); };
  return {
      {gainPlate_, analyser_.GainScale(), analyser_.GainOffset(), "Gain (dB)", false, false, gain},
      {phasePlate_, analyser_.PhaseScale(), analyser_.PhaseOffset(), "Phase (deg)", single, single,
       phase}};
}

// Between two points on either side of a wrap there is no phase to draw.
double ResponsePainter::PhaseOrGap(int slot, double hz) const {
  const double index = analyser_.IndexAt(slot, hz);
  const double lower = std::floor(index);
  if (index > lower) {
    const double jump =
        analyser_.ResponsePhase(slot, lower + 1.0) - analyser_.ResponsePhase(slot, lower);
    if (std::abs(jump) > 180.0) return std::numeric_limits<double>::quiet_NaN();
  }
  return analyser_.PhaseAt(slot, hz);
}

void ResponsePainter::Paint(QPainter& painter, const ScopeColours& colours) {
  painter.fillRect(QRect(QPoint(0, 0), size_), colours.Around);
  const std::vector<Axis> axes = Axes();
  painter.fillRect(gainPlate_, colours.Plate);
  PaintFrequencyLines(painter, colours, gainPlate_);
  if (analyser_.SplitScreen()) {
    painter.fillRect(phasePlate_, colours.Plate);
    PaintFrequencyLines(painter, colours, phasePlate_);
  }
  PaintFrequencyLabels(painter, colours);
  for (const Axis& axis : axes) {
    PaintAxis(painter, colours, axis);
    for (int slot = 0; slot < FrequencyAnalyser::SlotCount; ++slot) {
      if (analyser_.TraceAt(slot).Shown && analyser_.HasData(slot)) PaintTrace(painter, axis, slot);
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
  const int top = phasePlate_.bottom() + Scaled(LabelGap);
  int free = 0;
  ForEachFrequencyLine(analyser_.FreqMin(), analyser_.FreqMax(), [&](double hz, int mantissa) {
    if (!IsLabelled(mantissa, decades)) return;
    const QString label = Text(FormatGeneral(hz, 4, 1));
    const int width = metrics.horizontalAdvance(label);
    const int left = phasePlate_.left() + qRound(ColumnOf(hz)) - width / 2;
    if (left < free) return;
    painter.drawText(QRect(left, top, width, metrics.height()), Qt::AlignCenter | Qt::TextDontClip,
                     label);
    free = left + width + Scaled(LabelGap);
  });
}

// Division lines with their values, and the caption above the plate's corner.
void ResponsePainter::PaintAxis(QPainter& painter, const ScopeColours& colours,
                                const Axis& axis) const {
  const QRect& plate = axis.Plate;
  const QFontMetrics metrics(numberFont_);
  const int gap = Scaled(LabelGap);
  painter.setFont(numberFont_);
  for (int line = 0; line <= VerticalDivisions; ++line) {
    const int y = plate.top() + line * (plate.height() - 1) / VerticalDivisions;
    if (line > 0 && line < VerticalDivisions && !axis.OnRight) {
      painter.setPen(QPen(2 * line == VerticalDivisions ? colours.Axis : colours.Grid,
                          std::max(1, Scaled(1.0))));
      painter.drawLine(plate.left(), y, plate.right(), y);
    }
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
  const QString caption = Text(axis.Caption + (axis.Dashed ? ", dashed" : ""));
  painter.drawText(QRect(plate.left(), plate.top() - height - gap / 2, plate.width(), height),
                   axis.OnRight ? Qt::AlignRight : Qt::AlignLeft, caption);
}

// A point a column, within the frequencies measured. A value that is not a number breaks the line.
void ResponsePainter::PaintTrace(QPainter& painter, const Axis& axis, int slot) const {
  const QRect& plate = axis.Plate;
  const FrequencyAnalyser::Range range = analyser_.DataRange(slot);
  painter.save();
  painter.setClipRect(plate);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(PenColour(slot), TraceWidth * ratio_,
                      axis.Dashed ? Qt::DashLine : Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin));
  QPolygonF line;
  for (int x = 0; x <= plate.width(); ++x) {
    const double hz = FrequencyAt(x);
    if (hz < range.Low) continue;
    if (hz > range.High) break;
    const double value = axis.Value(slot, hz);
    if (std::isnan(value)) {
      painter.drawPolyline(line);
      line.clear();
      continue;
    }
    const double up = (value + axis.Offset) / axis.Scale * plate.height() / VerticalDivisions;
    const double y = plate.top() + plate.height() / 2.0 - up;
    line << QPointF(plate.left() + x, std::clamp(y, -FarOutside, FarOutside));
  }
  painter.drawPolyline(line);
  painter.restore();
}

std::string ResponsePainter::LegendText() const {
  const auto scale = [](const char* unit, double perDivision, double offset) {
    return FormatEdit(perDivision) + " " + unit + "/div (Off: " + FormatEdit(offset) + ")";
  };
  std::string text;
  if (analyser_.Output()) text = analyser_.Output()->Name();
  if (analyser_.Input() && !analyser_.OutputOnly()) text += " / " + analyser_.Input()->Name();
  return text + "     " + scale("dB", analyser_.GainScale(), analyser_.GainOffset()) + "     " +
         scale("deg", analyser_.PhaseScale(), analyser_.PhaseOffset()) + "     " +
         FormatEdit(analyser_.FreqMin()) + " Hz to " + FormatEdit(analyser_.FreqMax()) + " Hz";
}

void ResponsePainter::PaintLegend(QPainter& painter, const ScopeColours& colours) const {
  painter.setFont(textFont_);
  painter.setPen(colours.Text);
  const int height = QFontMetrics(textFont_).height();
  const int margin = Scaled(Margin);
  painter.drawText(
      QRect(margin, size_.height() - height - margin, size_.width() - 2 * margin, height),
      Qt::AlignLeft, Text(LegendText()));
}

}  // namespace torvane
