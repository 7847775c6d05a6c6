#pragma once

#include <csignal>
#include <string>

#include "core/files/output_file.h"

namespace torvane {

/// A new file in the folder, to be written and then moved to its place; it is removed again unless
/// it has got there. While it lives, requests to end the program wait, so that they leave nothing
/// behind.
///
/// The writer holds a lock on the file. One that nobody holds any more was left by a writer that
/// was killed, and is removed by the next writer in the folder.
class TemporaryFile {
 public:
  /// `folder` ends in "/", or is empty for the present one.
  explicit TemporaryFile(const std::string& folder);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  OutputFile& File() { return file_; }

  /// Before it is closed, so that nobody takes it for one that was left.
  bool MoveTo(const std::string& target);

 private:
  int Create(const std::string& folder);

  sigset_t heldBack_;
  std::string name_;
  OutputFile file_;
  bool moved_ = false;
};

}  // namespace torvane
