#pragma once

#include <QSettings>

namespace torvane {

/// What the program remembers for its user from one start to the next.
QSettings UserSettings();

/// Where the program keeps work of the user's that is in no file.
QString StateFolder();

/// Where tables and pictures were last taken from or put.
inline const QString ExportFolderKey = QStringLiteral("exportFolder");

}  // namespace torvane
