#pragma once

#include <QSettings>

namespace torvane {

/// What the program remembers for its user from one start to the next.
QSettings UserSettings();

}  // namespace torvane
