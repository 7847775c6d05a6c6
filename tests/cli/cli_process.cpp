#include "cli/cli_process.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/text.h"

namespace torvane::test {
namespace {

namespace fs = std::filesystem;

struct OwnFolder {
  OwnFolder() { fs::create_directories(Path); }
  ~OwnFolder() {
    if (getpid() == Owner) fs::remove_all(Path);
  }
  const pid_t Owner = getpid();
  const std::string Path = testing::TempDir() + "torvane-cli-" + std::to_string(Owner) + "/";
};

std::string StreamFile(const char* name, pid_t id) {
  return testing::TempDir() + "torvane-cli-" + name + std::to_string(id);
}

// Nothing where a signal came before the file.
std::string TakeFile(const std::string& path) {
  if (!fs::exists(path)) return {};
  std::string text = ReadWholeFile(path);
  fs::remove(path);
  return text;
}

}  // namespace

const std::string& Folder() {
  static const OwnFolder folder;
  return folder.Path;
}

// Into files rather than pipes, so that no side ever waits for the other.
Process::Process(const std::string& line) {
  const std::string shell = "cd '" + Folder() +
                            "'; PATH=$(dirname '" TORVANE_CLI "'):$PATH; DATA='" TORVANE_TEST_DATA
                            "/cli'; COMPLETE='" TORVANE_COMPLETE "'; exec >'" +
                            StreamFile("out", 0) + "'$$ 2>'" + StreamFile("err", 0) + "'$$; " +
                            line;
  id_ = fork();
  if (id_ != 0) return;
  execl("/bin/sh", "sh", "-c", shell.c_str(), nullptr);
  _exit(127);
}

Outcome Process::Wait() const {
  int status = 0;
  EXPECT_EQ(waitpid(id_, &status, 0), id_);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, TakeFile(StreamFile("out0", id_)),
          TakeFile(StreamFile("err0", id_))};
}

Outcome Shell(const std::string& line) {
  // Where the user's numbers have a decimal comma, awk would take 0.5 for 0.
  return Process("awk() { LC_ALL=C command awk \"$@\"; }; " + line).Wait();
}

std::string ReadWholeFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << path;
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

Table ParseTable(const std::string& text) {
  Table table;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream stream(line);
    std::vector<std::string> fields;
    for (std::string field; std::getline(stream, field, ',');) fields.push_back(field);
    if (table.Header.empty()) {
      table.Header = fields;
      table.Columns.resize(fields.size());
      continue;
    }
    EXPECT_EQ(fields.size(), table.Header.size()) << line;
    for (std::size_t i = 0; i < std::min(fields.size(), table.Columns.size()); ++i) {
      const std::optional<double> number = ParseNumber(fields[i]);
      EXPECT_TRUE(number.has_value()) << line;
      table.Columns[i].push_back(number.value_or(0.0));
    }
  }
  return table;
}

}  // namespace torvane::test
