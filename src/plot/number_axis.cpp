#include "plot/number_axis.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <algorithm>
#include <cmath>

#include "core/text.h"
#include "plot/picture_fonts.h"
#include "plot/plot_layout.h"

namespace torvane {

namespace {

constexpr double FrameMargin = 10.0;
constexpr double FrameGap = 5.0;
constexpr int WidestTick = 8;         // characters
constexpr double NumberShare = 0.92;  // of the text's size
constexpr int TicksAcross = 8;
constexpr double Slack = 1e-9;  // a tick at an end is on the axis whatever the rounding

}  // namespace

double RoundStep(double least) {
  const double power = std::pow(10.0, std::floor(std::log10(least)));
  for (const double mantissa : {1.0, 2.0, 5.0}) {
    if (mantissa * power >= least * (1.0 - Slack)) return mantissa * power;
  }
  return 10.0 * power;
}

QString TickText(double value) {
  return QString::fromStdString(FormatGeneral(value, 4, 1));
}

NumberAxis::NumberAxis(double low, double high, bool log) : low_(low), high_(high), log_(log) {
  if (high_ > low_) return;
  const double room = std::max(0.5 * std::abs(low_), log_ ? 0.0 : 1e-12);
  low_ -= room;
  high_ += room > 0.0 ? room : 1.0;
}

double NumberAxis::ShareOf(double value) const {
  if (log_) return std::log(value / low_) / std::log(high_ / low_);
  return (value - low_) / (high_ - low_);
}

std::vector<double> NumberAxis::Ticks(int most) const {
  std::vector<double> ticks;
  if (!log_ || high_ / low_ < 10.0) {
    const double step = RoundStep((high_ - low_) / most);
    const double first = std::ceil(low_ / step - Slack);
    // Not -0.
    for (double k = first; k * step <= high_ + Slack * step; ++k) ticks.push_back(k * step + 0.0);
    return ticks;
  }
  const bool between = std::log10(high_ / low_) < 3.0;
  for (double power = std::pow(10.0, std::floor(std::log10(low_))); power <= high_; power *= 10.0) {
    for (const double mantissa : {1.0, 2.0, 5.0}) {
      const double tick = mantissa * power;
      const bool inside = tick >= low_ * (1.0 - Slack) && tick <= high_ * (1.0 + Slack);
      if (inside && (between || mantissa == 1.0)) ticks.push_back(tick);
    }
  }
  return ticks;
}

void NumberFrame::Layout(const QSize& size, double ratio, int right) {
  Ratio = ratio;
  Width = size.width();
  const QFontMetrics words(ScaledFont(QGuiApplication::font(), ratio, 1.0));
  const QFontMetrics numbers(ScaledFont(QGuiApplication::font(), ratio, NumberShare));
  const int margin = qRound(FrameMargin * ratio);
  const int gap = qRound(FrameGap * ratio);
  const int left = margin + words.height() + gap + numbers.horizontalAdvance(u'0') * WidestTick;
  const int top = margin + words.height() + gap;
  const int bottom = margin + words.height() + numbers.height() + 2 * gap;
  Plate = QRect(left, top, std::max(SmallestPlate, size.width() - left - 2 * margin - right),
                std::max(SmallestPlate, size.height() - top - bottom));
}

void NumberFrame::Paint(QPainter& painter, const ScopeColours& colours, bool grid) const {
  const QFont text = ScaledFont(QGuiApplication::font(), Ratio, 1.0);
  const QFont number = ScaledFont(QGuiApplication::font(), Ratio, NumberShare);
  const int gap = qRound(FrameGap * Ratio);
  const QFontMetrics words(text);
  const QFontMetrics numbers(number);
  const QPen line(colours.Grid, Ratio);
  painter.fillRect(Plate, colours.Plate);
  painter.setFont(number);
  int free = 0;  // of numbers already drawn
  for (const double tick : X.Ticks(TicksAcross)) {
    const int x = qRound(At(tick, Y.Low()).x());
    painter.setPen(line);
    painter.drawLine(x, grid ? Plate.top() : Plate.bottom(), x, Plate.bottom() + gap);
    painter.setPen(colours.Text);
    const int half = (numbers.horizontalAdvance(TickText(tick)) + 1) / 2;
    if (x - half < free) continue;
    painter.drawText(QRect(x - half, Plate.bottom() + gap, 2 * half, numbers.height()),
                     Qt::AlignCenter, TickText(tick));
    free = x + half + numbers.horizontalAdvance(u'0');
  }
  for (const double tick : Y.Ticks(TicksAcross)) {
    const int y = qRound(At(X.Low(), tick).y());
    painter.setPen(line);
    painter.drawLine(Plate.left() - gap, y, grid ? Plate.right() : Plate.left(), y);
    painter.setPen(colours.Text);
    painter.drawText(QRect(0, y - numbers.height(), Plate.left() - 2 * gap, 2 * numbers.height()),
                     Qt::AlignRight | Qt::AlignVCenter, TickText(tick));
  }
  painter.setFont(text);
  const int across = Width - Plate.left();
  painter.drawText(QRect(Plate.left(), 0, across, Plate.top() - gap),
                   Qt::AlignLeft | Qt::AlignBottom,
                   words.elidedText(QString::fromStdString(Title), Qt::ElideRight, across));
  const int below = Plate.bottom() + 2 * gap + numbers.height();
  painter.drawText(QRect(Plate.left(), below, Plate.width(), words.height()), Qt::AlignCenter,
                   QString::fromStdString(XCaption));
  painter.save();
  painter.translate(qRound(FrameMargin * Ratio), Plate.center().y());
  painter.rotate(-90.0);
  painter.drawText(QRect(-Plate.height() / 2, 0, Plate.height(), words.height()), Qt::AlignCenter,
                   QString::fromStdString(YCaption));
  painter.restore();
}

}  // namespace torvane
