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

  /// Gives the file a name under which it is offered no more, and reports that, with the reason.
  void SetAside(const std::string& reason);
};

/// What keeps an unsaved session over a crash: a sealed model file in the user's state folder,
/// removed when the program ends cleanly.
class RecoveryFile {
 public:
  RecoveryFile();
  ~RecoveryFile() { Remove(); }
  RecoveryFile(const RecoveryFile&) = delete;
  RecoveryFile& operator=(const RecoveryFile&) = delete;

  /// Keeps the text. The last one stays until the new one is whole; when it cannot be made so, that
  /// is reported, once.
  void Write(const std::string& text);
  void Remove();
  /// What is kept stays for the next start, whatever happens to the object.
  void Leave();
  /// The session that was left behind is this process's from now on.
  void Adopt(KeptSession&& kept);

  /// Sessions left behind, the newest first. Files that are not whole are set aside under a name of
  /// their own, and reported.
  static std::vector<KeptSession> LeftBehind();

 private:
  QString path_;
  OwnedFile file_;
  std::string written_;
  bool faultTold_ = false;
};

}  // namespace torvane
