#include "ui/session/recovery_file.h"

#include <signal.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <cerrno>

namespace torvane {

namespace {

const QString Prefix = QStringLiteral("session-");
const QString Suffix = QStringLiteral(".tvf");

QString StateFolder() {
  const QString named = qEnvironmentVariable("XDG_STATE_HOME");
  const QString base = QDir::isAbsolutePath(named) && !named.isEmpty()
                           ? named
                           : QDir::homePath() + QStringLiteral("/.local/state");
  return base + QStringLiteral("/torvane");
}

bool IsAlive(qint64 process) {
  return ::kill(static_cast<pid_t>(process), 0) == 0 || errno == EPERM;
}

}  // namespace

RecoveryFile::RecoveryFile()
    : path_(QStringLiteral("%1/%2%3%4")
                .arg(StateFolder(), Prefix)
                .arg(QCoreApplication::applicationPid())
                .arg(Suffix)) {}

void RecoveryFile::Write(const std::string& text) {
  if (text == written_) return;
  QDir().mkpath(StateFolder());
  QSaveFile file(path_);
  if (!file.open(QIODevice::WriteOnly)) return;
  file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
  file.write(text.data(), static_cast<qint64>(text.size()));
  if (file.commit()) written_ = text;
}

void RecoveryFile::Remove() {
  if (written_.empty()) return;
  QFile::remove(path_);
  written_.clear();
}

QStringList RecoveryFile::LeftBehind() {
  QStringList files;
  const QFileInfoList found =
      QDir(StateFolder())
          .entryInfoList({Prefix + QStringLiteral("*") + Suffix}, QDir::Files, QDir::Time);
  for (const QFileInfo& file : found) {
    const QString number = file.completeBaseName().mid(Prefix.size());
    bool isNumber = false;
    const qint64 process = number.toLongLong(&isNumber);
    if (isNumber && process > 0 && !IsAlive(process)) files += file.filePath();
  }
  return files;
}

}  // namespace torvane
