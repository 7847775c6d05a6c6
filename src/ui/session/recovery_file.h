#pragma once

#include <QDateTime>
#include <QString>
#include <string>
#include <vector>

#include "ui/session/owned_file.h"

namespace torvane {

/// A session that a process left behind which ended without saving it.
struct KeptSession {
  OwnedFile File;
  QDateTime When;
  std::string Text;  ///< a model file
};

/// What keeps an unsaved session over a crash: a sealed model file in the user's state folder,
/// removed when the program ends cleanly.
class RecoveryFile {
 public:
  RecoveryFile();
  ~RecoveryFile() { Remove(); }
  RecoveryFile(const RecoveryFile&) = delete;
  RecoveryFile& operator=(const RecoveryFile&) = delete;

  /// Keeps the text, silently: a session that cannot be kept is no reason to disturb it. The last
  /// one stays until the new one is whole.
  void Write(const std::string& text);
  void Remove();
  /// The session that was left behind is this process's from now on.
  void Adopt(KeptSession&& kept);

  /// Sessions left behind, the newest first. Files that are not whole are set aside under a name of
  /// their own, and reported.
  static std::vector<KeptSession> LeftBehind();

 private:
  QString path_;
  OwnedFile file_;
  std::string written_;
};

}  // namespace torvane
