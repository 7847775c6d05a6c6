#include "plot/run/run_picture.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <algorithm>
#include <cmath>
#include <utility>

#include "plot/curve_painter.h"
#include "plot/dashes.h"
#include "plot/number_axis.h"
#include "plot/picture_fonts.h"
#include "plot/plot_layout.h"

namespace torvane {
namespace {

constexpr double RunLineWidth = 1.4;
constexpr double StripRoom = 0.06;   // of the range, above and below
constexpr int MostTimes = 10;        // at the time axis
constexpr int WidestTickNumber = 9;  // characters
constexpr double SmallText = 0.92;

struct StripLayout {
  std::vector<std::size_t> Signals;
  NumberAxis Y;
  QRect Legend;
  QRect Plate;
};

// An axis with room around what it shows; that of a signal that stands is wider than its rounding.
NumberAxis StripAxis(const RunStrip& strip) {
  const double size = std::max(std::abs(strip.Low), std::abs(strip.High));
  const double span = strip.High - strip.Low;
  const double room = span > 1e-9 * size ? StripRoom * span : size > 0.0 ? 0.5 * size : 1.0;
  return {strip.Low - room, strip.High + room};
}

/// Lays out and paints strips; lengths are pixels of the device.
class RunPainter {
 public:
  RunPainter(QPainter& painter, const RecordedRun& run, const QSize& size, double ratio)
      : painter_(painter),
        run_(run),
        size_(size),
        ratio_(ratio),
        text_(ScaledFont(QGuiApplication::font(), ratio, 1.0)),
        number_(ScaledFont(QGuiApplication::font(), ratio, SmallText)),
        words_(text_),
        numbers_(number_),
        margin_(qRound(PlotMargin * ratio)),
        gap_(qRound(LabelGap * ratio)) {
    if (!run.Times().empty()) time_ = NumberAxis(run.Times().front(), run.End());
    Layout();
  }

  void Paint() {
    painter_.fillRect(QRect(QPoint(0, 0), size_), colours_.Around);
    painter_.setFont(text_);
    painter_.setPen(colours_.Text);
    painter_.drawText(QRect(margin_, margin_, size_.width() - 2 * margin_, words_.height()),
                      Qt::AlignLeft | Qt::AlignVCenter,
                      Short(run_.Title(), size_.width() - 2 * margin_));
    for (const StripLayout& strip : strips_) {
      PaintAxes(strip);
      PaintLegend(strip);
      PaintSignals(strip);
    }
    if (!strips_.empty()) PaintTimes(strips_.back().Plate);
  }

 private:
  void Layout() {
    const std::vector<RunStrip> strips = StripsOf(run_);
    if (strips.empty()) return;
    const int left =
        margin_ + words_.height() + gap_ + numbers_.horizontalAdvance(u'0') * WidestTickNumber;
    const int width = std::max(SmallestPlate, size_.width() - left - 3 * margin_);
    const int top = margin_ + words_.height() + gap_;
    const int below = numbers_.height() + words_.height() + 2 * gap_ + margin_;
    const int each = (size_.height() - top - below) / static_cast<int>(strips.size());
    int y = top;
    for (const RunStrip& strip : strips) {
      const QRect legend(left, y, width, words_.height() + gap_);
      const QRect plate(left, legend.bottom() + 1, width,
                        std::max(1, each - legend.height() - gap_));
      strips_.push_back({strip.Signals, StripAxis(strip), legend, plate});
      y += each;
    }
  }

  QString Short(const std::string& text, int width) const {
    return words_.elidedText(QString::fromStdString(text), Qt::ElideRight, width);
  }
  double XOf(double time, const QRect& plate) const {
    return plate.left() + time_.ShareOf(time) * plate.width();
  }
  static double YOf(double value, const StripLayout& strip) {
    return strip.Plate.bottom() + 1 - strip.Y.ShareOf(value) * strip.Plate.height();
  }
  QPen PenOf(std::size_t signal) const {
    const auto index = static_cast<int>(signal);
    return DashedPen(colours_.Trace(index % TraceColourCount), RunLineWidth * ratio_,
                     ScaledPattern(index / TraceColourCount));
  }
  QVector<double> ScaledPattern(int index) const {
    QVector<double> pattern = TracePattern(index % TraceColourCount);
    for (double& length : pattern) length *= ratio_;
    return pattern;
  }

  void PaintAxes(const StripLayout& strip) {
    painter_.fillRect(strip.Plate, colours_.Plate);
    const QPen line(colours_.Grid, ratio_);
    painter_.setPen(line);
    for (const double tick : time_.Ticks(MostTimes)) {
      const int x = qRound(XOf(tick, strip.Plate));
      painter_.drawLine(x, strip.Plate.top(), x, strip.Plate.bottom());
    }
    painter_.setFont(number_);
    const int most = std::clamp(2 * strip.Plate.height() / (3 * numbers_.height()), 3, 8);
    int free = size_.height();
    for (const double tick : strip.Y.Ticks(most)) {
      const int y = qRound(YOf(tick, strip));
      painter_.setPen(line);
      painter_.drawLine(strip.Plate.left() - gap_, y, strip.Plate.right(), y);
      if (y + numbers_.height() / 2 > free) continue;
      free = y - numbers_.height() / 2;
      painter_.setPen(colours_.Text);
      painter_.drawText(
          QRect(0, y - numbers_.height(), strip.Plate.left() - 2 * gap_, 2 * numbers_.height()),
          Qt::AlignRight | Qt::AlignVCenter, TickText(tick));
    }
    painter_.setPen(QPen(colours_.Axis, ratio_));
    painter_.setBrush(Qt::NoBrush);
    painter_.drawRect(strip.Plate);
    const std::string& unit = run_.Signals()[strip.Signals.front()].Unit;
    painter_.setFont(text_);
    painter_.setPen(colours_.Text);
    painter_.save();
    painter_.translate(margin_, strip.Plate.center().y());
    painter_.rotate(-90.0);
    const int reach = strip.Plate.height() + strip.Legend.height();
    painter_.drawText(QRect(-reach / 2, 0, reach, words_.height()), Qt::AlignCenter,
                      Short(unit, reach));
    painter_.restore();
  }

  void PaintLegend(const StripLayout& strip) {
    const int sample = qRound(SampleLength * ratio_);
    const int between = qRound(EntryGap * ratio_);
    const int each = strip.Legend.width() / static_cast<int>(strip.Signals.size());
    int x = strip.Legend.left();
    for (const std::size_t k : strip.Signals) {
      const int y = strip.Legend.center().y();
      painter_.setPen(PenOf(k));
      painter_.drawLine(x, y, x + sample, y);
      x += sample + gap_;
      const QString name =
          Short(run_.Signals()[k].Name, std::max(1, each - sample - gap_ - between));
      const int width = words_.horizontalAdvance(name);
      painter_.setPen(colours_.Text);
      painter_.setFont(text_);
      painter_.drawText(QRect(x, strip.Legend.top(), width + gap_, strip.Legend.height()),
                        Qt::AlignLeft | Qt::AlignVCenter, name);
      x += width + between;
    }
  }

  void PaintSignals(const StripLayout& strip) {
    painter_.save();
    painter_.setClipRect(strip.Plate);
    painter_.setRenderHint(QPainter::Antialiasing);
    painter_.setBrush(Qt::NoBrush);
    for (const std::size_t k : strip.Signals) {
      painter_.setPen(PenOf(k));
      QPolygonF line;
      const auto add = [&](double x, double value) {
        const QPointF point(x, YOf(value, strip));
        if (line.empty() || line.back() != point) line.push_back(point);
      };
      const std::vector<RecordedRun::Column>& columns = run_.Signals()[k].Columns;
      for (std::size_t i = 0; i < columns.size(); ++i) {
        const double x = XOf(run_.Times()[i], strip.Plate);
        for (const double value :
             {columns[i].First, columns[i].Low, columns[i].High, columns[i].Last}) {
          add(x, value);
        }
      }
      if (!columns.empty()) add(XOf(run_.End(), strip.Plate), columns.back().Last);
      painter_.drawPolyline(Simplified(line));
      // A line of a single row has no length.
      if (line.size() == 1) painter_.drawEllipse(line.front(), 2.0 * ratio_, 2.0 * ratio_);
    }
    painter_.restore();
  }

  void PaintTimes(const QRect& plate) {
    painter_.setFont(number_);
    painter_.setPen(colours_.Text);
    int free = 0;
    for (const double tick : time_.Ticks(MostTimes)) {
      const int x = qRound(XOf(tick, plate));
      const int half = (numbers_.horizontalAdvance(TickText(tick)) + 1) / 2;
      if (x - half < free) continue;
      painter_.drawText(QRect(x - half, plate.bottom() + gap_, 2 * half, numbers_.height()),
                        Qt::AlignCenter, TickText(tick));
      free = x + half + numbers_.horizontalAdvance(u'0');
    }
    painter_.setFont(text_);
    painter_.drawText(QRect(plate.left(), plate.bottom() + 2 * gap_ + numbers_.height(),
                            plate.width(), words_.height()),
                      Qt::AlignCenter, QString::fromStdString("Time (" + run_.TimeUnit() + ")"));
  }

  QPainter& painter_;
  const RecordedRun& run_;
  QSize size_;
  double ratio_;
  QFont text_;
  QFont number_;
  QFontMetrics words_;
  QFontMetrics numbers_;
  int margin_;
  int gap_;
  ScopeColours colours_ = ScopeColours::Light();
  NumberAxis time_;
  std::vector<StripLayout> strips_;
};

}  // namespace

Picture RunPicture(RecordedRun run) {
  const auto paint = [run = std::move(run)](QPainter& painter, const QSize& size, double ratio) {
    RunPainter(painter, run, size, ratio).Paint();
  };
  return {"Run", paint};
}

}  // namespace torvane
