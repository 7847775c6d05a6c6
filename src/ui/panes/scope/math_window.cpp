#include "ui/panes/scope/math_window.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <QLayout>
#include <QScreen>
#include <algorithm>
#include <functional>

#include "core/text.h"

namespace torvane {

namespace {

constexpr int NameWidth = 130;
constexpr int ColumnWidth = 92;

template <typename Measures, typename Value>
QString Figure(const std::optional<Measures>& measures, Value value) {
  if (!measures) return ReadOutWindow::Unavailable;
  return QString::fromStdString(FormatGeneral(std::invoke(value, *measures), 4, 1));
}

}  // namespace

MathWindow::MathWindow(const ZelScope& scope, QWidget* parent)
    : ReadOutWindow(QStringLiteral("Scope Math"), QStringLiteral("SGMath"),
                    QStringLiteral("Measures of the displayed channels over the screen, or between "
                                   "two cursors, and of their responses to a step of the trigger's "
                                   "source"),
                    parent),
      timeUnit_(QString::fromStdString(scope.TimeChannel().Signal().Unit())) {
  setObjectName(QStringLiteral("TZelMathF"));
}

void MathWindow::ShowMeasures(const std::vector<ChannelMeasures>& live,
                              const std::vector<ChannelMeasures>& kept) {
  QStringList header{QStringLiteral("Measure")};
  std::vector<ChannelMeasures> measures;
  for (std::size_t i = 0; i < live.size(); ++i) {
    header << QString::fromStdString(live[i].Channel->Name());
    measures.push_back(live[i]);
    if (i >= kept.size()) continue;
    header << header.back() + QStringLiteral(" kept");
    measures.push_back(kept[i]);
  }
  QList<QStringList> rows;
  const auto row = [&](const QString& name, auto part, auto value) {
    rows << QStringList{name};
    for (const ChannelMeasures& of : measures) rows.back() << Figure(of.*part, value);
  };
  const auto time = [&](const char* name, auto value) {
    row(QStringLiteral("%1 (%2)").arg(QLatin1String(name), timeUnit_), &ChannelMeasures::Step,
        value);
  };
  row(QStringLiteral("Mean"), &ChannelMeasures::Trace, &TraceMeasures::Mean);
  row(QStringLiteral("RMS"), &ChannelMeasures::Trace, &TraceMeasures::Rms);
  row(QStringLiteral("Minimum"), &ChannelMeasures::Trace, &TraceMeasures::Minimum);
  row(QStringLiteral("Maximum"), &ChannelMeasures::Trace, &TraceMeasures::Maximum);
  row(QStringLiteral("Peak to peak"), &ChannelMeasures::Trace, &TraceMeasures::PeakToPeak);
  row(QStringLiteral("Overshoot (%)"), &ChannelMeasures::Step, &StepMeasures::OvershootPercent);
  time("Rise", &StepMeasures::RiseTime);
  time("Settling", &StepMeasures::SettlingTime);
  time("Delay", &StepMeasures::Delay);
  const bool otherChannels = Table().columnCount() != header.size();
  SetCells(header, rows);
  if (!otherChannels) return;
  const QMargins around = layout()->contentsMargins();
  int width = around.left() + around.right() + 2 * Table().frameWidth();
  for (int column = 0; column < header.size(); ++column) {
    const int titled = Table().horizontalHeader()->sectionSizeHint(column);
    Table().setColumnWidth(column, std::max(column == 0 ? NameWidth : ColumnWidth, titled));
    width += Table().columnWidth(column);
  }
  resize(std::min(width, screen()->availableGeometry().width()), height());
}

void MathWindow::closeEvent(QCloseEvent* event) {
  event->accept();
  emit Closed();
}

}  // namespace torvane
