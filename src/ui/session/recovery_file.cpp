#include "ui/session/recovery_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <utility>

#include "core/files/file_fault.h"
#include "core/files/model_file.h"
#include "core/files/seal.h"
#include "core/messages.h"
#include "ui/session/user_settings.h"

namespace torvane {

namespace {

const QString Prefix = QStringLiteral("session-");
const QString Suffix = QStringLiteral(".tvf");

std::optional<std::string> ReadWhole(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return {};
  // One byte more than a session can have tells a larger file from it.
  const QByteArray bytes = file.read(static_cast<qint64>(MaxModelFileSize) + 1);
  return Unsealed(std::string_view(bytes.data(), static_cast<std::size_t>(bytes.size())));
}

// What a first write left that was cut off: no session's file stands beside it.
void RemoveDrafts() {
  const QFileInfoList drafts =
      QDir(StateFolder())
          .entryInfoList({Prefix + u'*' + Suffix + QStringLiteral(".new")}, QDir::Files);
  for (const QFileInfo& draft : drafts) OwnedFile::Claim(draft.filePath()).Remove();
}

// Zero, or what of errno stood against it.
int MakeStateFolder() {
  std::error_code fault;
  std::filesystem::create_directories(StateFolder().toStdString(), fault);
  return fault.value();
}

}  // namespace

void KeptSession::SetAside(const std::string& reason) {
  const QFileInfo info(File.Path());
  const QString path =
      info.dir().filePath(QStringLiteral("damaged-") + info.completeBaseName() + Suffix);
  const bool moved = File.Rename(path);
  Warning("A session that was kept before Torvane ended " + reason +
          (moved ? ".\nWhat is left of it has been set aside in\n"
                 : ".\nIt could not be set aside and is still in\n") +
          File.Path().toStdString());
}

RecoveryFile::RecoveryFile()
    : path_(QStringLiteral("%1/%2%3%4")
                .arg(StateFolder(), Prefix, QUuid::createUuid().toString(QUuid::Id128), Suffix)) {}

void RecoveryFile::Write(const std::string& text) {
  if (text == written_) return;
  int fault = MakeStateFolder();
  OwnedFile file = fault == 0 ? OwnedFile::Write(path_, Sealed(text)) : OwnedFile();
  if (file.Exists()) {
    file_ = std::move(file);
    written_ = text;
  } else if (!std::exchange(faultTold_, true)) {
    if (fault == 0) fault = errno;
    Warning("What is not saved cannot be kept over a crash.\n" +
            CannotWrite(path_.toStdString(), fault));
  }
}

void RecoveryFile::Remove() {
  file_.Remove();
  written_.clear();
}

void RecoveryFile::Leave() {
  file_ = OwnedFile();
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
    std::optional<std::string> text = ReadWhole(info.filePath());
    KeptSession kept{std::move(file), info.lastModified(), text.value_or("")};
    if (text) {
      sessions.push_back(std::move(kept));
    } else {
      kept.SetAside("is damaged and cannot be brought back");
    }
  }
  return sessions;
}

}  // namespace torvane
