#include "ui/panes/scope/math_window.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <QScrollBar>
#include <algorithm>
#include <array>

#include "core/text.h"

namespace torvane {

namespace {

constexpr int BesideText = 12;  // in a cell, pixels

using TraceFigure = double (*)(const TraceMeasures&);

QString Text(const std::optional<TraceMeasures>& measures, TraceFigure figure) {
  if (!measures) return ReadOutWindow::Unavailable;
  return QString::fromStdString(FormatGeneral(figure(*measures), 4, 1));
}

QString Text(const StepFigure& figure) {
  if (figure.Gap != StepGap::None) return QString::fromLatin1(ShortReason(figure.Gap));
  return QString::fromStdString(figure.Text());
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
  const auto traceRow = [&](const char* name, TraceFigure figure) {
    rows << QStringList{QLatin1String(name)};
    for (const ChannelMeasures& of : measures) rows.back() << Text(of.Trace, figure);
  };
  traceRow("Mean", [](const TraceMeasures& of) { return of.Mean; });
  traceRow("RMS", [](const TraceMeasures& of) { return of.Rms; });
  traceRow("Minimum", [](const TraceMeasures& of) { return of.Minimum; });
  traceRow("Maximum", [](const TraceMeasures& of) { return of.Maximum; });
  traceRow("Peak to peak", [](const TraceMeasures& of) { return of.PeakToPeak(); });
  const auto firstOfStep = static_cast<int>(rows.size());
  const std::array<const char*, 4> names{"Overshoot", "Rise", "Settling", "Delay"};
  const std::array parts{&StepMeasures::Overshoot, &StepMeasures::Rise, &StepMeasures::Settling,
                         &StepMeasures::Delay};
  for (std::size_t k = 0; k < parts.size(); ++k) {
    const QString unit = k == 0 ? QStringLiteral("%") : timeUnit_;
    rows << QStringList{QStringLiteral("%1 (%2)").arg(QLatin1String(names.at(k)), unit)};
    for (const ChannelMeasures& of : measures) {
      rows.back() << (of.Step ? Text((*of.Step).*parts.at(k)) : Unavailable);
    }
  }
  const bool otherChannels = Table().columnCount() != header.size();
  SetCells(header, rows);
  for (std::size_t k = 0; k < parts.size(); ++k) {
    for (std::size_t i = 0; i < measures.size(); ++i) {
      const auto& step = measures[i].Step;
      const StepGap gap = step ? ((*step).*parts.at(k)).Gap : StepGap::None;
      Table()
          .item(firstOfStep + static_cast<int>(k), static_cast<int>(i) + 1)
          ->setToolTip(QString::fromLatin1(Reason(gap)));
    }
  }
  if (!otherChannels) return;
  const auto widthOf = [&](const QString& text) {
    return Table().fontMetrics().horizontalAdvance(text) + BesideText;
  };
  int nameWidth = 0;
  for (const QStringList& row : rows) nameWidth = std::max(nameWidth, widthOf(row.front()));
  int width = 2 * Table().frameWidth();
  for (int column = 0; column < header.size(); ++column) {
    const int titled = Table().horizontalHeader()->sectionSizeHint(column);
    const int text = column == 0 ? nameWidth : widthOf(Unavailable);
    Table().setColumnWidth(column, std::max(text, titled));
    width += Table().columnWidth(column);
  }
  Want(width + Table().verticalScrollBar()->sizeHint().width());
}

void MathWindow::closeEvent(QCloseEvent* event) {
  event->accept();
  emit Closed();
}

}  // namespace torvane
