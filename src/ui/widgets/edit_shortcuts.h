#pragma once

#include <functional>

class QEvent;
class QLineEdit;

namespace torvane {

/// Settles, in an event filter of an edit, whether a key belongs to the edit or is a shortcut of
/// the program. Undo and redo are the edit's own only while typed text is `pending`; a shortcut
/// that the edit has no use for finds pending text committed. True when the event is dealt with.
bool SettleShortcut(QLineEdit& edit, QEvent& event, bool pending,
                    const std::function<void()>& commit);

}  // namespace torvane
