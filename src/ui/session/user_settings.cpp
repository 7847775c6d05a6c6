#include "ui/session/user_settings.h"

namespace torvane {

QSettings UserSettings() {
  return QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("torvane"),
                   QStringLiteral("torvane"));
}

}  // namespace torvane
