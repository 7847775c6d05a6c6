#include "ui/session/loop_shelf.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <algorithm>

#include "core/messages.h"
#include "loops/loop_file.h"

namespace torvane {

namespace {

const QString ExampleLoop = QStringLiteral("FirstLoop.mo");
constexpr int MostLoops = 200;  // more are no list to choose from
constexpr qint64 MostLoopText = 65536;

ShelvedLoop ReadShelved(const QFileInfo& info) {
  QFile file(info.filePath());
  const QByteArray text = file.open(QIODevice::ReadOnly) ? file.read(MostLoopText) : QByteArray();
  const std::string name = loops::LoopNameIn(text.toStdString());
  return {name.empty() ? info.fileName() : QString::fromStdString(name), info.absoluteFilePath()};
}

}  // namespace

LoopShelf::LoopShelf(const DataFolder& data) : data_(data) {
  connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, &LoopShelf::ReadFolder);
  ReadFolder();
}

QString LoopShelf::Folder() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
         QStringLiteral("/torvane/loops");
}

bool LoopShelf::MakeFolder() {
  if (QFileInfo(Folder()).isDir()) return true;
  if (!QDir().mkpath(Folder())) {
    Error("The folder for loops cannot be made: " + Folder().toStdString());
    return false;
  }
  const QString example = data_.FindFolder(QStringLiteral("loops")) + u'/' + ExampleLoop;
  if (QFileInfo(example).isFile()) QFile::copy(example, Folder() + u'/' + ExampleLoop);
  ReadFolder();
  return true;
}

void LoopShelf::Add(const ShelvedLoop& loop) {
  std::erase_if(elsewhere_, [&](const ShelvedLoop& other) { return other.Path == loop.Path; });
  elsewhere_.push_back(loop);
  ReadFolder();
}

// What was opened counts as it was opened: its name may have been changed since it was read.
void LoopShelf::ReadFolder() {
  loops_ = elsewhere_;
  const QFileInfoList files =
      QDir(Folder()).entryInfoList({QStringLiteral("*.mo")}, QDir::Files, QDir::Name);
  for (const QFileInfo& file : files.mid(0, MostLoops)) {
    const bool known = std::ranges::any_of(
        elsewhere_, [&](const ShelvedLoop& loop) { return loop.Path == file.absoluteFilePath(); });
    if (!known) loops_.push_back(ReadShelved(file));
  }
  std::ranges::stable_sort(loops_, [](const ShelvedLoop& a, const ShelvedLoop& b) {
    return a.Name.compare(b.Name, Qt::CaseInsensitive) < 0;
  });
  if (watcher_.directories().isEmpty() && QFileInfo(Folder()).isDir()) watcher_.addPath(Folder());
  emit Changed();
}

}  // namespace torvane
