#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/result_file.h"

namespace torvane::cli {

/// A file's text; one that cannot be read, or is none, is a CommandError.
std::string ReadStudyFile(const std::string& path);

/// The rows that a study has so far, in a file beside its result, OUT.part: they outlast a kill,
/// and the same study goes on below them. Its first line tells one study from another.
class PartFile {
 public:
  /// Opens OUT.part, made when there is none, and keeps it from other processes. One of another
  /// study is refused.
  PartFile(const std::string& out, const std::string& identity);

  /// The whole rows that were there, line ends included. Below the first so many of them the file
  /// is cut off.
  const std::vector<std::string>& Rows() const { return rows_; }
  void KeepRows(std::size_t count);

  void Append(const std::string& row);
  /// The result is whole elsewhere.
  void Remove();

 private:
  void CutTo(off_t length);

  std::string path_;
  OutputFile file_;
  std::string identity_;
  std::vector<std::string> rows_;
};

}  // namespace torvane::cli
