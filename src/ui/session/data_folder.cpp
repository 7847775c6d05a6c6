#include "ui/session/data_folder.h"

#include <QDir>
#include <QFileInfo>

namespace torvane {

DataFolder::DataFolder(const QString& programFolder)
    : folders_{QDir::cleanPath(programFolder),
               QDir::cleanPath(programFolder + QStringLiteral("/../share/torvane"))} {}

QString DataFolder::Find(const QString& name) const {
  for (const QString& folder : folders_) {
    const QFileInfo file(QDir(folder), name);
    if (file.isFile()) return file.filePath();
  }
  return {};
}

QString DataFolder::FindFolder(const QString& name) const {
  for (const QString& folder : folders_) {
    const QDir found(folder + u'/' + name);
    if (found.exists()) return found.path();
  }
  return {};
}

QString DataFolder::MissingText(const QString& name) const {
  return QStringLiteral("The file \"%1\" is missing. It was looked for in\n%2")
      .arg(name, folders_.join(QStringLiteral("\n")));
}

}  // namespace torvane
