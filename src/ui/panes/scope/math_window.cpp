#include "ui/panes/scope/math_window.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <QScrollBar>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

#include "core/text.h"

namespace torvane {

namespace {

constexpr int BesideText = 12;  // in a cell, pixels

using TraceFigure = double (*)(const TraceMeasures&);

struct TraceRow {
  const char* Name;
  TraceFigure Figure;
};
constexpr std::array<TraceRow, 5> TraceRows{{
    {"Mean", [](const TraceMeasures& of) { return of.Mean; }},
    {"RMS", [](const TraceMeasures& of) { return of.Rms; }},
    {"Minimum", [](const TraceMeasures& of) { return of.Minimum; }},
    {"Maximum", [](const TraceMeasures& of) { return of.Maximum; }},
    {"Peak to peak", [](const TraceMeasures& of) { return of.PeakToPeak(); }},
}};

struct StepRow {
  const char* Name;
  StepFigure StepMeasures::*Figure;
};
constexpr std::array<StepRow, 4> StepRows{{{"Overshoot", &StepMeasures::Overshoot},
                                           {"Rise", &StepMeasures::Rise},
                                           {"Settling", &StepMeasures::Settling},
                                           {"Delay", &StepMeasures::Delay}}};

/// A figure, or why there is none.
struct Cell {
  QString Text;
  QString Why;
};

Cell CellOf(const ChannelMeasures& of, const TraceRow& row) {
  if (!of.Trace) return {ReadOutWindow::Unavailable, {}};
  return {QString::fromStdString(FormatGeneral(row.Figure(*of.Trace), 4, 1)), {}};
}

Cell CellOf(const ChannelMeasures& of, const StepRow& row) {
  if (!of.Step) return {ReadOutWindow::Unavailable, {}};
  const StepFigure& figure = (*of.Step).*row.Figure;
  if (figure.Gap == StepGap::None) return {QString::fromStdString(figure.Text()), {}};
  return {QString::fromLatin1(ShortReason(figure.Gap)), QString::fromLatin1(Reason(figure.Gap))};
}

}  // namespace

MathWindow::MathWindow(const ZelScope& scope, QWidget* parent)
    : ReadOutWindow(QStringLiteral("Scope Math"), QStringLiteral("SGMath"),
                    QStringLiteral("Measures of the displayed channels over the screen, or between "
                                   "two cursors, and of their responses to a step of the trigger's "
                                   "source; below them those of the kept traces"),
                    parent),
      timeUnit_(QString::fromStdString(scope.TimeChannel().Signal().Unit())) {
  setObjectName(QStringLiteral("TZelMathF"));
}

void MathWindow::ShowNames(bool withKept) {
  QStringList names;
  const auto add = [&](const QString& name) {
    names << name;
    if (withKept) names << QStringLiteral("   kept");
  };
  for (const TraceRow& row : TraceRows) add(QLatin1String(row.Name));
  for (const StepRow& row : StepRows) {
    const QString unit = &row == StepRows.data() ? QStringLiteral("%") : timeUnit_;
    add(QStringLiteral("%1 (%2)").arg(QLatin1String(row.Name), unit));
  }
  NameRows(names);
}

void MathWindow::ShowMeasures(const std::vector<ChannelMeasures>& live,
                              const std::vector<ChannelMeasures>& kept) {
  QStringList header;
  for (const ChannelMeasures& of : live) header << QString::fromStdString(of.Channel->Name());
  QList<QStringList> rows;
  QList<QStringList> reasons;
  const auto addLine = [&](const std::vector<ChannelMeasures>& traces, const auto& row) {
    QStringList texts;
    QStringList why;
    for (const ChannelMeasures& of : traces) {
      const Cell cell = CellOf(of, row);
      texts << cell.Text;
      why << cell.Why;
    }
    rows << texts;
    reasons << why;
  };
  const auto add = [&](const auto& row) {
    addLine(live, row);
    if (!kept.empty()) addLine(kept, row);
  };
  for (const TraceRow& row : TraceRows) add(row);
  for (const StepRow& row : StepRows) add(row);
  const QSize before(Table().columnCount(), Table().rowCount());
  const QSize now(static_cast<int>(header.size()), static_cast<int>(rows.size()));
  if (now.height() != before.height()) ShowNames(!kept.empty());
  SetCells(header, rows);
  for (int row = 0; row < now.height(); ++row) {
    for (int column = 0; column < now.width(); ++column) {
      Table().item(row, column)->setToolTip(reasons[row][column]);
    }
  }
  if (now != before) FitColumns();
}

void MathWindow::FitColumns() {
  const int text = Table().fontMetrics().horizontalAdvance(Unavailable) + BesideText;
  const QMargins around = Body().contentsMargins();
  const int frame = style()->pixelMetric(QStyle::PM_DockWidgetFrameWidth, nullptr, this);
  int width = around.left() + around.right() + 2 * (frame + Table().frameWidth()) +
              Table().verticalHeader()->sizeHint().width();
  for (int column = 0; column < Table().columnCount(); ++column) {
    const int titled = Table().horizontalHeader()->sectionSizeHint(column);
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
