#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace torvane::test {

/// What a program left behind.
struct Outcome {
  int Code = -1;  ///< exit code; -1 when a signal ended it
  std::string Out;
  std::string Err;
};

/// A running command line of the shell, which finds torvane-cli, works in Folder() and knows
/// tests/data/cli as $DATA, and as $COMPLETE what tells bash's completion of lines.
class Process {
 public:
  explicit Process(const std::string& line);
  pid_t Id() const { return id_; }
  Outcome Wait() const;

 private:
  pid_t id_;
};

/// Runs a command line to its end.
Outcome Shell(const std::string& line);

/// A folder of this process's own, with a slash at its end. It goes with the process.
const std::string& Folder();

std::string ReadWholeFile(const std::string& path);

/// A CSV text: the header's fields and the columns of numbers.
struct Table {
  std::vector<std::string> Header;
  std::vector<std::vector<double>> Columns;
  std::size_t Rows() const { return Columns.empty() ? 0 : Columns.front().size(); }
};

/// Parses the text; every line must have the header's fields and every field must be a number.
Table ParseTable(const std::string& text);

}  // namespace torvane::test
