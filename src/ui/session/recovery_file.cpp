#include "ui/session/recovery_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>
#include <optional>
#include <utility>

#include "core/files/model_file.h"
#include "core/files/seal.h"
#include "core/messages.h"

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

std::optional<std::string> ReadWhole(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return {};
  // One byte more than a session can have tells a larger file from it.
  const QByteArray bytes = file.read(static_cast<qint64>(MaxModelFileSize) + 1);
  return Unsealed(std::string_view(bytes.data(), static_cast<std::size_t>(bytes.size())));
}

void SetAside(OwnedFile& file) {
  const QFileInfo info(file.Path());
  const QString path =
      info.dir().filePath(QStringLiteral("damaged-") + info.completeBaseName() + Suffix);
  file.Rename(path);
  Warning(
      "A session that was kept before Torvane ended is damaged and cannot be brought back.\n"
      "What is left of it has been set aside in\n" +
      path.toStdString());
}

// What a first write left that was cut off: no session's file stands beside it.
void RemoveDrafts() {
  const QFileInfoList drafts =
      QDir(StateFolder())
          .entryInfoList({Prefix + u'*' + Suffix + QStringLiteral(".new")}, QDir::Files);
  for (const QFileInfo& draft : drafts) OwnedFile::Claim(draft.filePath()).Remove();
}

}  // namespace

RecoveryFile::RecoveryFile()
    : path_(QStringLiteral("%1/%2%3%4")
                .arg(StateFolder(), Prefix, QUuid::createUuid().toString(QUuid::Id128), Suffix)) {}

void RecoveryFile::Write(const std::string& text) {
  if (text == written_) return;
  QDir().mkpath(StateFolder());
  OwnedFile file = OwnedFile::Write(path_, Sealed(text));
  if (!file.Exists()) return;
  file_ = std::move(file);
  written_ = text;
}

void RecoveryFile::Remove() {
  file_.Remove();
  written_.clear();
}

void RecoveryFile::Adopt(KeptSession&& kept) {
  path_ = kept.File.Path();
  file_ = std::move(kept.File);
  written_ = std::move(kept.Text);
}

std::vector<KeptSession> RecoveryFile::LeftBehind() {
  std::vector<KeptSession> sessions;
  RemoveDrafts();
  const QFileInfoList found =
      QDir(StateFolder()).entryInfoList({Prefix + u'*' + Suffix}, QDir::Files, QDir::Time);
  for (const QFileInfo& info : found) {
    OwnedFile file = OwnedFile::Claim(info.filePath());
    if (!file.Exists()) continue;
    if (std::optional<std::string> text = ReadWhole(info.filePath())) {
      sessions.push_back({std::move(file), info.lastModified(), std::move(*text)});
    } else {
      SetAside(file);
    }
  }
  return sessions;
}

}  // namespace torvane
