#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "core/files/output_file.h"

namespace torvane::cli {

/// How a result gets into its file.
enum class Delivery {
  Whole,     ///< all of it at Close; until then, and when that fails, the old file stays
  Streamed,  ///< line by line, as soon as they come
};

/// Where a command's result goes: a file, or standard output, which is always streamed. Only whole
/// lines reach it, however the command ends. Failures are CommandErrors that name the file and the
/// reason.
class ResultFile {
 public:
  /// A file that cannot be written is refused now, before anything is computed for it. An empty
  /// path is standard output.
  explicit ResultFile(const std::string& path, Delivery delivery = Delivery::Whole);
  /// Passes on what is left of a stream; a failure goes unnoticed, so a command that succeeds calls
  /// Close.
  ~ResultFile();
  ResultFile(const ResultFile&) = delete;
  ResultFile& operator=(const ResultFile&) = delete;

  /// Appends whole lines. Those of a stream are passed on in large pieces, but at least twice a
  /// second while lines keep coming.
  void Write(std::string_view lines);
  void Close();

  bool IsStandardOutput() const { return path_.empty(); }

 private:
  bool PassOn();
  std::string Name() const;

  std::string path_;
  bool streamed_;
  OutputFile file_;  ///< of a stream
  std::string pending_;
  std::chrono::steady_clock::time_point passedOn_;
};

/// Refuses outputs that cannot be written, or that are one and the same file or one that is read,
/// before anything is computed for them. Empty names are none.
void CheckOutputs(const std::string& out, const std::string& picture,
                  const std::string& input = {});

}  // namespace torvane::cli
