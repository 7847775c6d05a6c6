#include "ui/session/loop_draft.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>
#include <utility>

#include "core/files/atomic_save.h"

namespace torvane {

namespace {

constexpr int WriteMilliseconds = 150;  // a program may write in several strokes
constexpr qint64 MostDraft = qint64{1} << 20U;

}  // namespace

LoopDraft::LoopDraft() {
  look_.setSingleShot(true);
  connect(&look_, &QTimer::timeout, this, &LoopDraft::Look);
  const auto look = [this] { look_.start(WriteMilliseconds); };
  connect(&watcher_, &QFileSystemWatcher::fileChanged, this, look);
  connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, look);
}

QString LoopDraft::Decoded(const std::string& bytes) {
  QStringDecoder decoder(QStringDecoder::Utf8);
  const QByteArrayView view(bytes.data(), static_cast<qsizetype>(bytes.size()));
  QString text = decoder(view);
  if (decoder.hasError()) text = QString::fromLatin1(view);
  return text.remove(u'\r');
}

std::optional<QString> LoopDraft::InFile(const QString& path) {
  QFile file(path);
  if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) return {};
  return Decoded(file.read(MostDraft).toStdString());
}

void LoopDraft::Open(const QString& path, const QString& text) {
  path_ = path;
  text_ = text;
  saved_ = InFile(path).value_or(QString());
  QFile file(path);
  endsInCrLf_ = QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly) &&
                file.readLine(MostDraft).endsWith("\r\n");
  elsewhere_.reset();
  Watch();
  emit TextChanged();
  emit FileChanged();
}

void LoopDraft::Restore(const QString& path, const QString& text,
                        const std::optional<QString>& held) {
  Open(path, text);
  if (held) saved_ = *held;
  Look();
}

bool LoopDraft::SaveAs(const QString& path) {
  const QString before = std::exchange(path_, path);
  const bool saved = Write(text_);
  if (!saved) path_ = before;
  return saved;
}

bool LoopDraft::Write(const QString& text) {
  QString lines = text;
  if (endsInCrLf_) lines.replace(u'\n', QStringLiteral("\r\n"));
  if (!SaveAtomically(path_.toStdString(), lines.toStdString())) return false;
  saved_ = text;
  elsewhere_.reset();
  Watch();
  emit FileChanged();
  return true;
}

void LoopDraft::Discard() {
  text_ = saved_;
  emit TextChanged();
  emit FileChanged();
}

// The folder tells of a file that is put in the place of the old one.
void LoopDraft::Watch() {
  const QStringList watched = watcher_.files() + watcher_.directories();
  if (!watched.isEmpty()) watcher_.removePaths(watched);
  watcher_.addPath(QFileInfo(path_).path());
  if (QFileInfo::exists(path_)) watcher_.addPath(path_);
}

// Of a file that is gone the text stands nowhere else, until it comes back.
void LoopDraft::Look() {
  const std::optional<QString> now = InFile(path_);
  if (!now) {
    saved_ = QString();
    emit FileChanged();
    return;
  }
  if (!watcher_.files().contains(path_)) watcher_.addPath(path_);
  const bool wasElsewhere = std::exchange(elsewhere_, std::nullopt).has_value();
  if (*now == text_) {
    saved_ = text_;
  } else if (*now != saved_) {
    elsewhere_ = now;
  }
  if (wasElsewhere || elsewhere_ || *now == text_) emit FileChanged();
}

void LoopDraft::ReadAgain() {
  if (!elsewhere_) return;
  text_ = saved_ = *std::exchange(elsewhere_, std::nullopt);
  emit TextChanged();
  emit FileChanged();
}

// It has been told; the file is now otherwise than the text.
void LoopDraft::Ignore() {
  if (!elsewhere_) return;
  saved_ = *std::exchange(elsewhere_, std::nullopt);
  emit FileChanged();
}

}  // namespace torvane
