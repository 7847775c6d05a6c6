#include "plot/response/response_legend.h"

#include <QFontMetrics>

#include "core/text.h"
#include "plot/dashes.h"
#include "plot/plot_layout.h"
#include "plot/qt_text.h"

namespace torvane {

namespace {

std::string ScaleText(const char* unit, double perDivision, double offset) {
  return FormatEdit(perDivision) + " " + unit + "/div (Off: " + FormatEdit(offset) + ")";
}

}  // namespace

TracePen ResponsePen(const ScopeColours& colours, const TraceLook& look, int slot) {
  const bool solid = slot == FrequencyAnalyser::TheorySlot || !look.Patterns;
  return {colours.Trace(slot), solid ? QVector<double>() : TracePattern(slot)};
}

void PaintMemoryMark(QPainter& painter, const QColor& fill, int slot, const QPointF& at,
                     double ratio) {
  const double r = MarkSize * ratio;
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

int ResponseLegend::DrawnCount(const FrequencyAnalyser& analyser) {
  int count = 0;
  for (const int slot : PaintOrder) {
    if (IsDrawn(analyser, slot)) ++count;
  }
  return count;
}

// The current measurement is always spoken of.
bool ResponseLegend::Unavailable(int slot) const {
  return !analyser_.HasData(slot) && (slot == 0 || analyser_.TraceAt(slot).Shown);
}

std::string ResponseLegend::TraceText(int slot) const {
  const std::string name = FrequencyAnalyser::SlotName(slot);
  if (Unavailable(slot)) return name + ": Unavailable";
  if (slot == FrequencyAnalyser::TheorySlot) return name;
  const Response& response = analyser_.ResponseAt(slot);
  const std::string from = response.Name().empty() ? name : name + " " + response.Name();
  const char* const trust = response.Doubts().empty() ? "" : ", doubtful";
  const TraceOrigin& origin = analyser_.Origin(slot);
  if (!response.Name().empty() && !origin.Known()) return from + trust;
  std::vector<const TraceOrigin*> origins;
  for (int other = 0; other < FrequencyAnalyser::SlotCount; ++other) {
    if (analyser_.HasData(other) && analyser_.Origin(other).Known())
      origins.push_back(&analyser_.Origin(other));
  }
  const std::string told = OriginText(origin, origins);
  return from + (told.empty() ? "" : " ") + told + trust;
}

std::string ResponseLegend::PairText() const {
  std::string pair;
  if (analyser_.Output()) pair = analyser_.Output()->Name();
  if (analyser_.OutputOnly()) return pair;
  if (analyser_.Input()) pair += " / " + analyser_.Input()->Name();
  return analyser_.View().OpenLoop ? "G / (1 - G), G = " + pair : pair;
}

void ResponseLegend::MakeEntries() {
  const ResponsePlot plot = analyser_.View().Plot;
  std::vector<std::string> texts{PairText()};
  if (plot == ResponsePlot::Nyquist) {
    const NyquistWindow& window = analyser_.Nyquist();
    if (window.Scale > 0.0) {
      texts.push_back(FormatEdit(window.Scale) + "/div at " + FormatEdit(window.Real) + " + j " +
                      FormatEdit(window.Imaginary));
    }
  } else {
    texts.push_back(ScaleText("dB", analyser_.GainScale(), analyser_.GainOffset()));
    if (plot == ResponsePlot::Nichols || !analyser_.ShowsDelay()) {
      texts.push_back(ScaleText("deg", analyser_.PhaseScale(), analyser_.PhaseOffset()));
    }
  }
  texts.push_back(FormatEdit(analyser_.FreqMin()) + " Hz to " + FormatEdit(analyser_.FreqMax()) +
                  " Hz");
  entries_.clear();
  for (std::string& text : texts) entries_.push_back({-1, std::move(text), {}});
  for (int slot = 0; slot <= FrequencyAnalyser::TheorySlot; ++slot) {
    if (IsDrawn(analyser_, slot) || Unavailable(slot)) {
      entries_.push_back({slot, TraceText(slot), {}});
    }
  }
}

// Rows from the lower edge of the picture upwards.
int ResponseLegend::Layout(const QSize& size, double ratio, const QFont& font,
                           const TraceLook& look) {
  ratio_ = ratio;
  font_ = font;
  look_ = look;
  MakeEntries();
  const QFontMetrics metrics(font_);
  const int margin = Scaled(PlotMargin);
  const int height = metrics.height();
  int x = margin;
  int y = 0;
  for (Entry& entry : entries_) {
    const int sample = entry.Slot < 0 ? 0 : Scaled(SampleLength + LabelGap);
    const int width = sample + metrics.horizontalAdvance(QtText(entry.Text)) + Scaled(2.0);
    const bool firstTrace = entry.Slot >= 0 && (&entry - 1)->Slot < 0;
    if (x > margin && (firstTrace || x + width > size.width() - margin)) {
      x = margin;
      y += height;
    }
    entry.Place = {x, y, width, height};
    x += width + Scaled(EntryGap);
  }
  const int taken = y + height + margin;
  for (Entry& entry : entries_) entry.Place.translate(0, size.height() - taken);
  return taken + Scaled(LabelGap);
}

void ResponseLegend::Paint(QPainter& painter, const ScopeColours& colours) const {
  painter.setFont(font_);
  for (const Entry& entry : entries_) {
    QRect place = entry.Place;
    if (entry.Slot >= 0) {
      place.setWidth(Scaled(SampleLength));
      PaintSample(painter, colours, entry.Slot, place);
      place.setLeft(place.right() + Scaled(LabelGap));
    }
    painter.setPen(colours.Text);
    painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip,
                     QtText(entry.Text));
  }
}

void ResponseLegend::PaintSample(QPainter& painter, const ScopeColours& colours, int slot,
                                 const QRect& place) const {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(place.adjusted(0, Scaled(2.0), 0, -Scaled(2.0)), colours.Plate);
  TracePen pen = ResponsePen(colours, look_, slot);
  for (double& length : pen.Dashes) length *= ratio_;
  painter.setPen(DashedPen(pen.Colour, ResponseWidth(slot) * ratio_, pen.Dashes));
  const double y = place.center().y() + 0.5;
  painter.drawLine(QPointF(place.left(), y), QPointF(place.right() + 1, y));
  if (slot > 0 && slot < FrequencyAnalyser::SlotCount) {
    painter.setPen(QPen(pen.Colour, ResponseWidth(slot) * ratio_));
    PaintMemoryMark(painter, colours.Plate, slot, QRectF(place).center(), ratio_);
  }
  painter.restore();
}

}  // namespace torvane
