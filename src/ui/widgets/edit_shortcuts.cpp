#include "ui/widgets/edit_shortcuts.h"

#include <QAction>
#include <QKeyEvent>
#include <QLineEdit>
#include <algorithm>

namespace torvane {

namespace {

bool IsUndoOrRedo(const QKeyEvent& key) {
  return key.matches(QKeySequence::Undo) || key.matches(QKeySequence::Redo);
}

// A key that the program may know as a shortcut; a modifier by itself is none.
bool MayBeShortcut(const QKeyEvent& key) {
  const bool modifierOnly = key.key() >= Qt::Key_Shift && key.key() <= Qt::Key_Alt;
  const bool function = key.key() >= Qt::Key_F1 && key.key() <= Qt::Key_F35;
  return !modifierOnly && (function || key.modifiers().testFlag(Qt::ControlModifier) ||
                           key.modifiers().testFlag(Qt::AltModifier));
}

// Whether a command of the window has the key, be it one of an edit's own: Ctrl+E goes to the end
// of a line where editors do.
bool IsOfWindow(const QKeyEvent& key, const QWidget& edit) {
  const QKeySequence keys(key.keyCombination());
  return std::ranges::any_of(edit.window()->findChildren<QAction*>(), [&](const QAction* action) {
    return action->isEnabled() && action->shortcutContext() == Qt::WindowShortcut &&
           action->shortcuts().contains(keys);
  });
}

}  // namespace

bool SettleShortcut(QLineEdit& edit, QEvent& event, bool pending,
                    const std::function<void()>& commit) {
  if (event.type() != QEvent::ShortcutOverride) return false;
  const auto& key = static_cast<const QKeyEvent&>(event);
  if (!MayBeShortcut(key)) return false;
  const bool undo = IsUndoOrRedo(key);
  const bool ofWindow = !undo && IsOfWindow(key, edit);
  if (pending && !ofWindow) {
    edit.event(&event);
    if (!event.isAccepted()) commit();
    return true;
  }
  if (!undo && !ofWindow) return false;
  event.ignore();
  if (pending) commit();
  return true;
}

}  // namespace torvane
