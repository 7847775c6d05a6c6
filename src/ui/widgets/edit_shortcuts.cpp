#include "ui/widgets/edit_shortcuts.h"

#include <QKeyEvent>
#include <QLineEdit>

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

}  // namespace

bool SettleShortcut(QLineEdit& edit, QEvent& event, bool pending,
                    const std::function<void()>& commit) {
  if (event.type() != QEvent::ShortcutOverride) return false;
  const auto& key = static_cast<const QKeyEvent&>(event);
  if (!pending) {
    if (!IsUndoOrRedo(key)) return false;
    event.ignore();
    return true;
  }
  if (!MayBeShortcut(key)) return false;
  edit.event(&event);
  if (!event.isAccepted()) commit();
  return true;
}

}  // namespace torvane
