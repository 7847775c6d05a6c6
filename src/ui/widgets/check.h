#pragma once

#include <QAbstractButton>
#include <QSignalBlocker>

namespace torvane {

/// Shows a setting that an engine has already: telling it again might restart it.
inline void Check(QAbstractButton& button, bool on) {
  const QSignalBlocker blocker(button);
  button.setChecked(on);
}

}  // namespace torvane
