#pragma once

#include <QString>
#include <QStringList>

namespace torvane {

/// Where the program's data files (pictures and descriptions of the models, examples) are: the
/// program's own folder first, then the installed one, share/torvane beside the folder of the
/// programs.
class DataFolder {
 public:
  /// `programFolder` is the folder that the program was started from.
  explicit DataFolder(const QString& programFolder);

  /// Path of the file of that name; empty when no folder has it.
  QString Find(const QString& name) const;

  /// As Find, of a folder.
  QString FindFolder(const QString& name) const;

  /// What to tell the user when it is missing: the name and where it was looked for.
  QString MissingText(const QString& name) const;

 private:
  QStringList folders_;
};

}  // namespace torvane
