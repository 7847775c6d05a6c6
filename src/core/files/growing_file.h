#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "core/files/output_file.h"

namespace torvane {

/// A result that is not whole yet, in a file of its own beside its place, PATH.part: whatever ends
/// the program, what was written stays there, and the old result too. While it is open no other
/// process has it.
class GrowingFile {
 public:
  /// The name of the file for the result at the path, links followed.
  static std::string NameFor(const std::string& path);

  explicit GrowingFile(const std::string& path) : path_(path), name_(NameFor(path)) {}

  const std::string& Name() const { return name_; }

  /// Opens the file, made when there is none; empty, or why it cannot be had. A link, a pipe or a
  /// device is refused.
  std::string Open();
  /// Bytes in it; what it holds, no more than `limit` of it.
  std::size_t Size() const;
  std::string Read(std::size_t limit) const;

  /// Each of these tells whether it succeeded; errno has the reason.
  bool Clear();
  /// Appends whole lines. When that fails, the whole ones among them that went in stay.
  bool Write(std::string_view lines);
  bool Flush();

  /// The file takes the result's place, with its permissions; empty, or what went wrong.
  std::string MoveInPlace();
  void Remove();

 private:
  std::string path_;
  std::string name_;
  std::optional<OutputFile> file_;
};

}  // namespace torvane
