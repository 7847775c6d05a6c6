#include "ui/desk/window_menu.h"

#include <QMenu>

#include "ui/desk/workspace.h"
#include "ui/panes/instrument_pane.h"

namespace torvane {

WindowMenu::WindowMenu(QMenu& menu, Workspace& workspace)
    : QObject(&menu), menu_(menu), workspace_(workspace) {
  connect(&menu, &QMenu::aboutToShow, this, &WindowMenu::Fill);
}

void WindowMenu::Fill() {
  qDeleteAll(listed_);
  listed_ = {menu_.addSeparator()};
  for (const InstrumentFrame* frame : workspace_.Frames()) {
    const Instrument* instrument = &frame->Pane().Engine();
    QString title = frame->windowTitle();
    QAction* item = menu_.addAction(title.replace(u'&', QStringLiteral("&&")));
    item->setCheckable(true);
    item->setChecked(frame->IsShown());
    connect(item, &QAction::toggled, &workspace_,
            [this, instrument](bool on) { workspace_.SetShown(*instrument, on); });
    listed_ << item;
  }
}

}  // namespace torvane
