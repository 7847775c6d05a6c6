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

using Arguments = std::vector<std::string>;

/// Runs torvane-cli to its end. Standard output goes to the given file instead, if there is one.
Outcome RunCli(const Arguments& arguments, const std::string& standardOutput = "");

/// As RunCli, of a command line that the shell splits into arguments.
Outcome RunCliLine(const std::string& line);

/// A running torvane-cli, to be signalled.
class CliProcess {
 public:
  explicit CliProcess(const Arguments& arguments);
  void Signal(int number) const;
  Outcome Wait();

 private:
  std::string out_;
  std::string err_;
  pid_t pid_;
};

/// A path in the test's folder for temporary files that no other test uses.
std::string TemporaryPath(const std::string& name);

std::string ReadWholeFile(const std::string& path);

std::vector<std::string> Lines(const std::string& text);

/// A CSV text: the header's fields and the columns of numbers.
struct Table {
  std::vector<std::string> Header;
  std::vector<std::vector<double>> Columns;
  std::size_t Rows() const { return Columns.empty() ? 0 : Columns.front().size(); }
};

/// Parses the text; every line must have the header's fields and every field must be a number.
Table ParseTable(const std::string& text);

}  // namespace torvane::test
