// How a scope's window shares its room between the graph, the pages of controls and what is docked.

#include <QBoxLayout>
#include <QRegularExpression>
#include <algorithm>
#include <initializer_list>

#include "ui/panes/constants/constants_splitter.h"
#include "ui/panes/scope/cursors_window.h"
#include "ui/panes/scope/math_window.h"
#include "ui/panes/scope/scope_window.h"
#include "ui_scope.h"

namespace torvane {

namespace {

// The least graph, where the workspace has that room and where it has not.
constexpr QSize LeastGraph(400, 250);
constexpr QSize SmallGraph(300, 180);
constexpr QSize RoomForLeastGraph(960, 540);
constexpr int LowScreen = 160;  // pixels that the screen keeps beside an opened page

QRegularExpression PanelNames() {
  return QRegularExpression(QStringLiteral("Panel$"));
}

// What the widest panel of the pages needs.
int PanelWidth(const QStackedWidget& pages) {
  int width = 0;
  for (const QFrame* panel : pages.findChildren<QFrame*>(PanelNames())) {
    width = std::max(width, panel->minimumSizeHint().width());
  }
  return width;
}

// The panels of a page stand side by side where there is room, else one below the other.
void Arrange(QBoxLayout& page, int room) {
  int width = -page.spacing();
  for (int i = 0; i < page.count(); ++i) {
    width += page.itemAt(i)->widget()->minimumSizeHint().width() + page.spacing();
  }
  page.setDirection(room >= width ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}

}  // namespace

void ScopeWindow::ConnectPages() {
  const std::pair<QAbstractButton*, QWidget*> pages[] = {{ui_->PageScales, ui_->ScalesPage},
                                                         {ui_->PageTrigger, ui_->TriggerPage},
                                                         {ui_->PageMeasure, ui_->MeasurePage}};
  for (const auto& [button, page] : pages) {
    connect(button, &QAbstractButton::clicked, this, [this, page = page] {
      ui_->Pages->setCurrentWidget(page);
      folding_ = Folding::Opened;
      FoldPages();
    });
  }
  connect(ui_->SBHide, &QAbstractButton::clicked, this, [this](bool hide) {
    folding_ = hide ? Folding::Folded : Folding::Opened;
    FoldPages();
  });
  connect(ui_->SBScaleDisplay, &QAbstractButton::toggled, ui_->PBScreen,
          &ScopePaintBox::SetScalesShown);
  ui_->Pages->setMinimumWidth(PanelWidth(*ui_->Pages));
}

// What is docked below the constants makes their side wider.
void ScopeWindow::FitSide() {
  int least = 0;
  for (const ReadOutWindow* panel : std::initializer_list<ReadOutWindow*>{math_, cursors_}) {
    if (!panel->isHidden() && !panel->isFloating())
      least = std::max(least, panel->Wanted().width());
  }
  splitter_->SetLeast(least);
}

void ScopeWindow::SetRoom(const QSize& workspace) {
  const bool ample = workspace.width() >= RoomForLeastGraph.width() &&
                     workspace.height() >= RoomForLeastGraph.height();
  ui_->PBScreen->SetLeastGraph(ample ? LeastGraph : SmallGraph);
  leastScreen_ = ui_->PBScreen->minimumHeight();
}

void ScopeWindow::resizeEvent(QResizeEvent* event) {
  InstrumentPane::resizeEvent(event);
  ArrangePages();
  FoldPages();
}

void ScopeWindow::ArrangePages() {
  const QMargins margins = ui_->Column->contentsMargins();
  const int room = width() - margins.left() - margins.right();
  Arrange(*ui_->ScalesPagePanels, room);
  Arrange(*ui_->TriggerPagePanels, room);
}

// Controls are given their sizes by their style, after the window has its own.
bool ScopeWindow::event(QEvent* event) {
  const bool known = InstrumentPane::event(event);
  if (event->type() == QEvent::LayoutRequest) {
    ArrangePages();
    FoldPages();
  }
  return known;
}

// The height of all but the page, with the least graph.
int ScopeWindow::HeightWithout() const {
  const QMargins margins = ui_->Column->contentsMargins();
  return margins.top() + leastScreen_ + ui_->Column->spacing() + ui_->Bar->minimumSize().height() +
         margins.bottom();
}

void ScopeWindow::FoldPages() {
  const int page = ui_->Pages->minimumSizeHint().height() + ui_->Column->spacing();
  const bool room = height() >= HeightWithout() + page;
  if (folding_ == Folding::Opened && room) folding_ = Folding::AsRoomAllows;
  const bool fold = folding_ == Folding::Folded || (folding_ == Folding::AsRoomAllows && !room);
  // Where there is no room, a page that the user has opened takes some of the graph's.
  ui_->PBScreen->setMinimumHeight(fold || room ? leastScreen_ : LowScreen);
  ui_->SBHide->setChecked(fold);
  ui_->Pages->setVisible(!fold);
}

QSize ScopeWindow::minimumSizeHint() const {
  return {InstrumentPane::minimumSizeHint().width(), HeightWithout()};
}

}  // namespace torvane
