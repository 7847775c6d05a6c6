// How a scope's window shares its room between the graph, the pages of controls and what is docked.

#include <QBoxLayout>
#include <QLayout>
#include <QMainWindow>
#include <QRegularExpression>
#include <algorithm>

#include "ui/panes/constants/constants_splitter.h"
#include "ui/panes/scope/cursors_window.h"
#include "ui/panes/scope/math_window.h"
#include "ui/panes/scope/scope_window.h"
#include "ui_scope.h"

namespace torvane {

namespace {

// The least graph, where the main window has that room and where it has not.
constexpr QSize LeastGraph(400, 250);
constexpr QSize SmallGraph(300, 180);
constexpr QSize RoomForLeastGraph(1180, 680);
constexpr int LowScreen = 160;    // pixels that the screen keeps beside an opened page
constexpr int NarrowPanel = 190;  // width of a panel beside the constants

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
      ShowPage(*page);
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
  ShowPage(*ui_->Pages->currentWidget());
}

// The pages need no more height than the one that is shown.
void ScopeWindow::ShowPage(QWidget& page) {
  for (int i = 0; i < ui_->Pages->count(); ++i) {
    const bool shown = ui_->Pages->widget(i) == &page;
    ui_->Pages->widget(i)->setSizePolicy(QSizePolicy::Preferred,
                                         shown ? QSizePolicy::Preferred : QSizePolicy::Ignored);
  }
  ui_->Pages->setCurrentWidget(&page);
}

std::array<ReadOutWindow*, 2> ScopeWindow::Panels() const {
  return {math_, cursors_};
}

// The least width of screen and constants.
int ScopeWindow::DividedWidth(Constants place) const {
  const int screen = ui_->PBScreen->minimumWidth();
  return screen + (place == Constants::Beside ? splitter_->Least().width() : 0);
}

// The least width of all but what is docked.
int ScopeWindow::WidthWithout(Constants place) const {
  const QMargins margins = ui_->Column->contentsMargins();
  const int widest =
      std::max({DividedWidth(place), ui_->Bar->minimumSize().width(), ui_->Pages->minimumWidth()});
  return margins.left() + widest + margins.right();
}

// A narrow panel can be scrolled.
int ScopeWindow::LeaveFor(const ReadOutWindow& panel) const {
  const int scrolled = std::max(panel.Wanted().width() - NarrowPanel, 0);
  return DividedWidth(Constants::Beside) - scrolled;
}

// A page that the user has opened before gives way to it.
void ScopeWindow::OpenPanel(ReadOutWindow& panel) {
  if (panel.isHidden() && folding_ == Folding::Opened) folding_ = Folding::AsRoomAllows;
  panel.OpenIn(*dock_, LeaveFor(panel));
}

// The constants, which may have given way to it, have their width again.
void ScopeWindow::HidePanel(ReadOutWindow& panel) {
  if (panel.isHidden()) return;
  panel.hide();
  dock_->layout()->activate();
  splitter_->Divide();
}

void ScopeWindow::PlacePanels() {
  for (ReadOutWindow* panel : Panels()) {
    if (!panel->isHidden()) panel->FollowRoom(*dock_, LeaveFor(*panel));
  }
  FoldPages();
}

// Whatever stands beside the workspace.
void ScopeWindow::SetRoom(const QSize& /*workspace*/) {
  const QSize whole = window()->size();
  const bool ample =
      whole.width() >= RoomForLeastGraph.width() && whole.height() >= RoomForLeastGraph.height();
  ui_->PBScreen->SetLeastGraph(ample ? LeastGraph : SmallGraph);
  leastScreen_ = ui_->PBScreen->minimumHeight();
  splitter_->LeaveScreen(leastScreen_);
}

void ScopeWindow::resizeEvent(QResizeEvent* event) {
  InstrumentPane::resizeEvent(event);
  splitter_->SetBelow(width() < WidthWithout(Constants::Beside));
  ArrangePages();
  PlacePanels();
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
int ScopeWindow::HeightWithout(Constants place) const {
  const QMargins margins = ui_->Column->contentsMargins();
  return margins.top() + leastScreen_ +
         (place == Constants::Below ? splitter_->Least().height() : 0) + ui_->Column->spacing() +
         ui_->Bar->minimumSize().height() + margins.bottom();
}

int ScopeWindow::HeightWithout() const {
  return HeightWithout(splitter_->IsBelow() ? Constants::Below : Constants::Beside);
}

int ScopeWindow::HeightBelow(bool least) const {
  int height = 0;
  for (ReadOutWindow* panel : Panels()) {
    const bool below = dock_->dockWidgetArea(panel) == Qt::BottomDockWidgetArea;
    if (panel->isHidden() || panel->isFloating() || !below) continue;
    const int own = least ? panel->minimumSizeHint().height() : panel->Wanted().height();
    height = std::max(height, own + ui_->Column->spacing());
  }
  return height;
}

void ScopeWindow::FoldPages() {
  const int page = ui_->Pages->minimumSizeHint().height() + ui_->Column->spacing();
  const bool room = height() >= HeightWithout() + page + HeightBelow(false);
  if (folding_ == Folding::Opened && room) folding_ = Folding::AsRoomAllows;
  const bool fold = folding_ == Folding::Folded || (folding_ == Folding::AsRoomAllows && !room);
  // Where there is no room, a page that the user has opened takes some of the graph's.
  const bool takes = !fold && height() < HeightWithout() + page + HeightBelow(true);
  ui_->PBScreen->setMinimumHeight(takes ? LowScreen : leastScreen_);
  const bool turned = fold != ui_->Pages->isHidden();
  ui_->SBHide->setChecked(fold);
  ui_->Pages->setVisible(!fold);
  if (!turned || HeightBelow(true) == 0) return;
  ui_->Column->activate();
  for (ReadOutWindow* panel : Panels()) fold ? panel->TakeRoom(*dock_) : panel->GiveRoom(*dock_);
}

QSize ScopeWindow::minimumSizeHint() const {
  return {WidthWithout(Constants::Below), HeightWithout() + HeightBelow(true)};
}

QSize ScopeWindow::UnfoldedSize() const {
  return {WidthWithout(Constants::Beside), HeightWithout(Constants::Beside) + HeightBelow(true)};
}

QSize ScopeWindow::FoldedSize() const {
  return {WidthWithout(Constants::Below), HeightWithout(Constants::Below) + HeightBelow(true)};
}

}  // namespace torvane
