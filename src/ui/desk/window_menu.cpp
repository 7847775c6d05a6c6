#include "ui/desk/window_menu.h"

#include <QMenu>
#include <QShortcut>
#include <algorithm>
#include <utility>

#include "ui/desk/workspace.h"
#include "ui/panes/instrument_pane.h"

namespace torvane {

namespace {

constexpr std::pair<InstrumentKind, Qt::Key> Keys[] = {{InstrumentKind::FftAnalyser, Qt::Key_F7},
                                                       {InstrumentKind::SweptSine, Qt::Key_F8}};

}  // namespace

WindowMenu::WindowMenu(QMenu& menu, Workspace& workspace)
    : QObject(&menu), menu_(menu), workspace_(workspace) {
  connect(&menu, &QMenu::aboutToShow, this, &WindowMenu::Fill);
  for (const auto& [kind, key] : Keys) {
    auto* shortcut = new QShortcut(QKeySequence(key), workspace.window());
    connect(shortcut, &QShortcut::activated, this,
            [this, kind = kind] { workspace_.Toggle(kind); });
  }
}

// The key brings the first window of its kind.
QString WindowMenu::KeyOf(InstrumentKind kind) {
  const auto found = std::find_if(std::begin(Keys), std::end(Keys),
                                  [&](const auto& entry) { return entry.first == kind; });
  if (found == std::end(Keys) || !keyed_.insert(kind).second) return {};
  return QLatin1Char('\t') + QKeySequence(found->second).toString(QKeySequence::NativeText);
}

void WindowMenu::Fill() {
  qDeleteAll(listed_);
  listed_ = {menu_.addSeparator()};
  keyed_.clear();
  for (const InstrumentFrame* frame : workspace_.Frames()) {
    const Instrument* instrument = &frame->Pane().Engine();
    QString title = frame->windowTitle();
    QAction* item =
        menu_.addAction(title.replace(u'&', QStringLiteral("&&")) + KeyOf(instrument->Kind()));
    item->setCheckable(true);
    item->setChecked(frame->IsShown());
    connect(item, &QAction::triggered, &workspace_,
            [this, instrument] { workspace_.Call(*instrument); });
    listed_ << item;
  }
}

}  // namespace torvane
