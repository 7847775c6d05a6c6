#include "cli/cli_process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <fstream>
#include <sstream>

#include "core/text.h"

namespace torvane::test {
namespace {

void Redirect(int descriptor, const std::string& path) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (file < 0 || dup2(file, descriptor) < 0) _exit(126);
  close(file);
}

// Into files rather than pipes, so that no side ever waits for the other.
pid_t Start(const std::vector<std::string>& words, const std::string& out, const std::string& err) {
  std::vector<char*> argv;
  for (const std::string& word : words) argv.push_back(const_cast<char*>(word.c_str()));
  argv.push_back(nullptr);
  const pid_t pid = fork();
  if (pid == 0) {
    Redirect(STDOUT_FILENO, out);
    Redirect(STDERR_FILENO, err);
    execv(argv.front(), argv.data());
    _exit(127);
  }
  return pid;
}

int WaitForCode(pid_t pid) {
  int status = 0;
  if (waitpid(pid, &status, 0) != pid) return -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

Outcome RunWords(const std::vector<std::string>& words, const std::string& standardOutput) {
  const bool own = standardOutput.empty();
  const std::string out = own ? TemporaryPath("out") : standardOutput;
  const std::string err = TemporaryPath("err");
  Outcome outcome;
  outcome.Code = WaitForCode(Start(words, out, err));
  if (own) outcome.Out = ReadWholeFile(out);
  outcome.Err = ReadWholeFile(err);
  return outcome;
}

Arguments WithProgram(const Arguments& arguments) {
  Arguments words{TORVANE_CLI};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return words;
}

}  // namespace

Outcome RunCli(const Arguments& arguments, const std::string& standardOutput) {
  return RunWords(WithProgram(arguments), standardOutput);
}

Outcome RunCliLine(const std::string& line) {
  return RunWords({"/bin/sh", "-c", "exec '" TORVANE_CLI "' " + line}, "");
}

CliProcess::CliProcess(const Arguments& arguments)
    : out_(TemporaryPath("out")),
      err_(TemporaryPath("err")),
      pid_(Start(WithProgram(arguments), out_, err_)) {}

void CliProcess::Signal(int number) const {
  kill(pid_, number);
}

Outcome CliProcess::Wait() {
  Outcome outcome;
  outcome.Code = WaitForCode(pid_);
  outcome.Out = ReadWholeFile(out_);
  outcome.Err = ReadWholeFile(err_);
  return outcome;
}

std::string TemporaryPath(const std::string& name) {
  return testing::TempDir() + "torvane-cli-" + std::to_string(getpid()) + "-" + name;
}

std::string ReadWholeFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << path;
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

Table ParseTable(const std::string& text) {
  Table table;
  for (const std::string& line : Lines(text)) {
    std::vector<std::string> fields;
    std::istringstream stream(line);
    for (std::string field; std::getline(stream, field, ',');) fields.push_back(field);
    if (table.Header.empty()) {
      table.Header = fields;
      table.Columns.resize(fields.size());
      continue;
    }
    EXPECT_EQ(fields.size(), table.Header.size()) << line;
    if (fields.size() != table.Header.size()) return {};
    for (std::size_t i = 0; i < fields.size(); ++i) {
      const std::optional<double> number = ParseNumber(fields[i]);
      EXPECT_TRUE(number.has_value()) << line;
      table.Columns[i].push_back(number.value_or(0.0));
    }
  }
  return table;
}

}  // namespace torvane::test
