#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <vector>

#include "ui/session/data_folder.h"

namespace torvane {

/// A file with a loop of the user's own.
struct ShelvedLoop {
  QString Name;  ///< of the loop, or of the file when that gives none
  QString Path;
};

/// The loops that are offered beside the built-in models: those in the user's folder for them,
/// which is watched, and those that were opened from elsewhere.
class LoopShelf : public QObject {
  Q_OBJECT

 public:
  explicit LoopShelf(const DataFolder& data);

  /// The user's folder for them, whether it is there or not.
  static QString Folder();
  /// Makes that folder, with an example in it, when it is not there yet. False after a report when
  /// it cannot be made.
  bool MakeFolder();

  /// By their names.
  const std::vector<ShelvedLoop>& Loops() const { return loops_; }
  /// Puts one on the shelf, or gives it another name.
  void Add(const ShelvedLoop& loop);

 signals:
  void Changed();

 private:
  void ReadFolder();

  const DataFolder& data_;
  QFileSystemWatcher watcher_;
  std::vector<ShelvedLoop> elsewhere_;
  std::vector<ShelvedLoop> loops_;
};

}  // namespace torvane
