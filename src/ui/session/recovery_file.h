#pragma once

#include <QString>
#include <QStringList>

namespace torvane {

/// What keeps an unsaved session over a crash: a model file in the user's state folder, named after
/// the process that writes it and removed when that ends cleanly.
class RecoveryFile {
 public:
  RecoveryFile();
  ~RecoveryFile() { Remove(); }
  RecoveryFile(const RecoveryFile&) = delete;
  RecoveryFile& operator=(const RecoveryFile&) = delete;

  /// Keeps the text, silently: a session that cannot be kept is no reason to disturb it.
  void Write(const std::string& text);
  void Remove();

  /// Files that processes left behind which are no more; the newest first.
  static QStringList LeftBehind();

 private:
  QString path_;
  std::string written_;
};

}  // namespace torvane
