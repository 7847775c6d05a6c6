#include "ui/session/last_session.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

#include "core/files/model_file.h"
#include "core/messages.h"
#include "ui/session/session.h"
#include "ui/session/user_settings.h"

namespace torvane::last_session {

namespace {

const QString OnKey = QStringLiteral("returnToLastSession");
const QString FileKey = QStringLiteral("lastSession/file");
const QString ChangedKey = QStringLiteral("lastSession/changed");
const QString PlacedKey = QStringLiteral("lastSession/placed");

QString Path() {
  return StateFolder() + QStringLiteral("/last-session");
}

}  // namespace

bool IsOn() {
  return UserSettings().value(OnKey, true).toBool();
}

void SetOn(bool on) {
  UserSettings().setValue(OnKey, on);
  if (!on) QFile::remove(Path());
}

bool Keep(const Session& session) {
  const std::string text = ModelFileText(*session.Model());
  QSaveFile file(Path());
  const auto size = static_cast<qint64>(text.size());
  if (!QDir().mkpath(StateFolder()) || !file.open(QIODevice::WriteOnly) ||
      file.write(text.data(), size) != size || !file.commit()) {
    Error("The session cannot be kept for the next start:\n" + Path().toStdString() + ": " +
          file.errorString().toStdString());
    return false;
  }
  QSettings settings = UserSettings();
  settings.setValue(FileKey, session.File());
  settings.setValue(ChangedKey, session.Changed());
  settings.setValue(PlacedKey, session.WindowsPlaced());
  return true;
}

void Bring(Session& session) {
  if (!QFile::exists(Path())) return;
  const QSettings settings = UserSettings();
  session.ComeBack(Path(), settings.value(FileKey).toString(), settings.value(ChangedKey).toBool(),
                   settings.value(PlacedKey).toBool());
}

}  // namespace torvane::last_session
