#include "ui/session/user_settings.h"

#include <QDir>

namespace torvane {

QSettings UserSettings() {
  return QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("torvane"),
                   QStringLiteral("torvane"));
}

QString StateFolder() {
  const QString named = qEnvironmentVariable("XDG_STATE_HOME");
  const QString base = QDir::isAbsolutePath(named) && !named.isEmpty()
                           ? named
                           : QDir::homePath() + QStringLiteral("/.local/state");
  return base + QStringLiteral("/torvane");
}

}  // namespace torvane
