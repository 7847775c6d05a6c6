#pragma once

#include <chrono>
#include <cstdio>
#include <string>
#include <string_view>

namespace torvane::cli {

/// Where a command's result goes: a file, or standard output. Only whole lines reach it, however
/// the command ends. Failures are CommandErrors that name the file and the reason.
class ResultFile {
 public:
  /// Creates or empties the file; an empty path is standard output.
  explicit ResultFile(const std::string& path);
  /// Writes what is left; a failure goes unnoticed, so a command that succeeds calls Close.
  ~ResultFile();
  ResultFile(const ResultFile&) = delete;
  ResultFile& operator=(const ResultFile&) = delete;

  /// Appends whole lines. They are passed on in large pieces, but at least twice a second while
  /// lines keep coming.
  void Write(std::string_view lines);
  void Close();

  bool IsStandardOutput() const { return file_ == stdout; }

 private:
  bool PassOn();
  [[noreturn]] void Fail() const;

  std::string name_;
  std::FILE* file_;
  std::string pending_;
  std::chrono::steady_clock::time_point passedOn_;
};

}  // namespace torvane::cli
