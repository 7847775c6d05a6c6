#include "ui/desk/pane_keys.h"

#include <QApplication>
#include <QDockWidget>
#include <QMainWindow>
#include <QMenuBar>
#include <QShortcut>
#include <algorithm>

#include "ui/desk/workspace.h"

namespace torvane {

namespace {

using Widgets = std::vector<QWidget*>;

// The pane that a widget belongs to: a panel docked in a window is listed after it. -1 for none.
int PaneOf(const Widgets& panes, const QWidget* widget) {
  for (int i = static_cast<int>(panes.size()) - 1; widget && i >= 0; --i) {
    if (panes[static_cast<std::size_t>(i)]->isAncestorOf(widget)) return i;
  }
  return -1;
}

// Where the focus was in the pane, else its first control.
QWidget* EntryOf(const Widgets& panes, int pane) {
  QWidget& around = *panes[static_cast<std::size_t>(pane)];
  const auto takes = [&](const QWidget* widget) {
    return widget && widget->isVisible() && widget->isEnabled() &&
           (widget->focusPolicy() & Qt::TabFocus) != 0 && PaneOf(panes, widget) == pane;
  };
  if (takes(around.focusWidget())) return around.focusWidget();
  const QList<QWidget*> inside = around.findChildren<QWidget*>();
  const auto first = std::find_if(inside.begin(), inside.end(), takes);
  return first == inside.end() ? nullptr : *first;
}

}  // namespace

PaneKeys::PaneKeys(QMainWindow& window, QWidget& strip, Workspace& workspace)
    : QObject(&window), window_(window), strip_(strip), workspace_(workspace) {
  const auto on = [this](const QKeySequence& key, auto act) {
    connect(new QShortcut(key, &window_), &QShortcut::activated, this, act);
  };
  on(Qt::Key_F6, [this] { Go(1); });
  on(Qt::SHIFT | Qt::Key_F6, [this] { Go(-1); });
  on(Qt::Key_F10, [this] {
    QMenuBar& bar = *window_.menuBar();
    bar.setActiveAction(bar.actions().value(0));
  });
}

Widgets PaneKeys::Panes() const {
  Widgets panes{&strip_};
  const auto add = [&](QWidget* pane) {
    if (pane->isVisible() && std::find(panes.begin(), panes.end(), pane) == panes.end()) {
      panes.push_back(pane);
    }
  };
  for (InstrumentFrame* frame : workspace_.Frames()) {
    if (!frame->IsShown()) continue;
    add(frame);
    for (QDockWidget* panel : frame->findChildren<QDockWidget*>()) add(panel);
  }
  for (QDockWidget* panel : window_.findChildren<QDockWidget*>()) add(panel);
  return panes;
}

void PaneKeys::Go(int step) {
  const Widgets panes = Panes();
  const int count = static_cast<int>(panes.size());
  int pane = PaneOf(panes, QApplication::focusWidget());
  if (pane < 0 && step < 0) pane = 0;
  for (int i = 0; i < count; ++i) {
    pane = (pane + step + count) % count;
    QWidget* const entry = EntryOf(panes, pane);
    if (!entry) continue;
    if (auto* frame = qobject_cast<QMdiSubWindow*>(panes[static_cast<std::size_t>(pane)])) {
      workspace_.setActiveSubWindow(frame);
    }
    entry->window()->activateWindow();
    entry->setFocus(Qt::TabFocusReason);
    return;
  }
}

}  // namespace torvane
