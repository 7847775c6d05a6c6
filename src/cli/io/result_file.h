#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "core/files/growing_file.h"
#include "core/files/output_file.h"

namespace torvane::cli {

/// How a result gets into its file.
enum class Delivery {
  Whole,     ///< all of it at Close
  Streamed,  ///< line by line, as soon as they come; a file's stand beside it until Close
};

/// Where a command's result goes: a file, or standard output, which is always streamed. The old
/// file stays until the new one is whole; a pipe or a device is written in place. Only whole lines
/// reach it, however the command ends. Failures are WorkFaults that name the file and the
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

  /// After an end before time: passes on what it has and gives what the message about the end says
  /// of the rows, "; the rows so far are in FILE"; empty when they are nowhere else.
  std::string KeepRows();

  bool IsStandardOutput() const { return path_.empty(); }

 private:
  void BeginGrowing();
  bool PassOn();
  std::string Name() const;

  std::string path_;
  bool streamed_;
  OutputFile file_;  ///< of a stream in place
  std::optional<GrowingFile> growing_;
  std::string pending_;
  std::chrono::steady_clock::time_point passedOn_;
};

/// Whether the paths are those of one file, whether or not there is one yet.
bool SameFile(const std::string& a, const std::string& b);

/// Whether what stands at the path is replaced when a result is whole: a plain file, or none yet.
/// Standard output, a pipe or a device is written in place.
bool IsReplaced(const std::string& path);

/// Refuses outputs that cannot be written, or that are one and the same file or one that is read,
/// before anything is computed for them. Empty names are none.
void CheckOutputs(const std::string& out, const std::string& picture,
                  const std::string& input = {});

}  // namespace torvane::cli
