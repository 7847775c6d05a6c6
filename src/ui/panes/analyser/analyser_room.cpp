// How an analyser's window shares its room between the plot, the rows of controls and what is
// docked.

#include <QMainWindow>
#include <algorithm>

#include "ui/panes/analyser/analyser_window.h"
#include "ui/panes/analyser/margins_window.h"
#include "ui/panes/analyser/response_cursors.h"
#include "ui_analyser.h"

namespace torvane {

namespace {

constexpr int LowRoom = 460;      // height of a workspace where plots make do with less
constexpr int LeastHeight = 280;  // of the plots
constexpr int LowHeight = 230;

// What the two groups of a row need: side by side where there is room, else one below the other.
struct RowNeeds {
  explicit RowNeeds(const QBoxLayout& groups)
      : Left(groups.itemAt(0)->minimumSize()),
        Right(groups.itemAt(1)->minimumSize()),
        Spacing(groups.spacing()) {}

  int Width() const { return std::max(Left.width(), Right.width()); }
  bool FitsBeside(int room) const { return Left.width() + Spacing + Right.width() <= room; }
  int Height(int room) const {
    return FitsBeside(room) ? std::max(Left.height(), Right.height())
                            : Left.height() + Spacing + Right.height();
  }

  QSize Left;
  QSize Right;
  int Spacing;
};

}  // namespace

void AnalyserWindow::ConnectFolding() {
  connect(ui_->SBHideRows, &QAbstractButton::clicked, this, [this](bool hide) {
    folding_ = hide ? Folding::Folded : Folding::Opened;
    FoldRows();
    emit NeedsChanged();
  });
}

void AnalyserWindow::SetRoom(const QSize& workspace) {
  lowRoom_ = workspace.height() < LowRoom;
  FitPlot();
}

bool AnalyserWindow::HasPanelBelow() const {
  const auto below = [this](QDockWidget* panel) {
    return !panel->isHidden() && !panel->isFloating() &&
           dock_->dockWidgetArea(panel) == Qt::BottomDockWidgetArea;
  };
  return below(margins_) || below(cursors_);
}

// Above a panel, and above controls that the user has opened, the plot gives way before these are
// covered.
void AnalyserWindow::FitPlot() {
  const bool low = lowRoom_ || HasPanelBelow() || !HasRoomUnfolded();
  ui_->PBPlot->setMinimumHeight(low ? LowHeight : LeastHeight);
}

void AnalyserWindow::resizeEvent(QResizeEvent* event) {
  InstrumentPane::resizeEvent(event);
  ArrangeRows();
  FoldRows();
}

// Controls are given their sizes by their style, after the window has its own, and warnings come
// and go.
bool AnalyserWindow::event(QEvent* event) {
  const bool known = InstrumentPane::event(event);
  if (event->type() == QEvent::LayoutRequest) {
    ArrangeRows();
    FoldRows();
  }
  return known;
}

void AnalyserWindow::ArrangeRows() {
  const QMargins margins = ui_->Column->contentsMargins();
  const int room = width() - margins.left() - margins.right();
  for (QBoxLayout* groups :
       {ui_->TopRowGroups, ui_->TraceRowGroups, ui_->AxisRowGroups, ui_->ScaleRowGroups}) {
    const RowNeeds needs(*groups);
    groups->parentWidget()->setMinimumWidth(needs.Width());
    groups->setDirection(needs.FitsBeside(room) ? QBoxLayout::LeftToRight
                                                : QBoxLayout::TopToBottom);
  }
}

QSize AnalyserWindow::LeastSize(bool folded, int width) const {
  std::vector<RowNeeds> rows{RowNeeds(*ui_->TopRowGroups)};
  if (!folded) {
    for (const QBoxLayout* groups : {ui_->TraceRowGroups, ui_->AxisRowGroups, ui_->ScaleRowGroups})
      rows.emplace_back(*groups);
  }
  const QSize plot = dock_->minimumSizeHint();
  int widest = plot.width();
  for (const RowNeeds& row : rows) widest = std::max(widest, row.Width());
  const QMargins margins = ui_->Column->contentsMargins();
  const int room = std::max(width - margins.left() - margins.right(), widest);
  const int spacing = ui_->Column->spacing();
  int height = plot.height() - ui_->PBPlot->minimumHeight() + LowHeight;
  for (const RowNeeds& row : rows) height += row.Height(room) + spacing;
  if (!ui_->LWarning->isHidden()) height += ui_->LWarning->heightForWidth(room) + spacing;
  return {margins.left() + widest + margins.right(), margins.top() + height + margins.bottom()};
}

bool AnalyserWindow::HasRoomUnfolded() const {
  const QSize least = LeastSize(false, width());
  return width() >= least.width() && height() >= least.height();
}

void AnalyserWindow::FoldRows() {
  const bool fold =
      folding_ == Folding::Folded || (folding_ == Folding::AsRoomAllows && !HasRoomUnfolded());
  ui_->SBHideRows->setChecked(fold);
  for (QWidget* row : {ui_->TraceRow, ui_->AxisRow, ui_->ScaleRow}) row->setVisible(!fold);
  FitPlot();
}

QSize AnalyserWindow::minimumSizeHint() const {
  return LeastSize(folding_ != Folding::Opened, QWIDGETSIZE_MAX);
}

// In a wide window, where the groups of all rows stand side by side; above a panel the plot gives
// way before the panel's figures are covered.
QSize AnalyserWindow::UnfoldedSize() const {
  const QSize least = LeastSize(folding_ == Folding::Folded, QWIDGETSIZE_MAX);
  const int more = lowRoom_ || HasPanelBelow() ? 0 : LeastHeight - LowHeight;
  return least + QSize(0, more);
}

QSize AnalyserWindow::FoldedSize() const {
  return folding_ == Folding::Opened ? QSize() : LeastSize(true, 0);
}

}  // namespace torvane
