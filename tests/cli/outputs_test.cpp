#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "cli/cli_process.h"

namespace torvane::test {
namespace {

namespace fs = std::filesystem;

// Every kind of file that a command makes whole; its name follows.
struct Output {
  const char* Command;
  const char* Name;
};
constexpr Output Outputs[] = {
    {"convert 1", "a.tvf"},
    {"scope 1 --until 0.1 --out", "a.csv"},
    {"bode 1 --input Command --output Response --order 8 --end-delay 0.01 --out", "a.csv"},
    {"sweep 1 --input Command --output Response --from 50 --to 60 --per-decade 5 --out", "a.csv"},
#ifdef TORVANE_PICTURES
    {"scope 1 --until 0.1 --picture", "a.png"},
    {"scope 1 --until 0.1 --picture", "a.svg"},
    {"bode 1 --input Command --output Response --order 8 --end-delay 0.01 --picture", "a.pdf"},
#endif
};

class OutputsTest : public testing::Test {
 protected:
  OutputsTest() { fs::create_directories(folder_); }
  ~OutputsTest() override { fs::remove_all(folder_); }

  std::string Old(const char* name) const {
    const std::string path = folder_ / name;
    std::ofstream(path, std::ios::binary) << "old";
    return path;
  }
  std::ptrdiff_t FileCount() const {
    return std::distance(fs::directory_iterator(folder_), fs::directory_iterator());
  }
  static Outcome Make(const Output& output, const std::string& path) {
    return RunCliLine(std::string(output.Command) + " '" + path + "'");
  }
  /// With a fault in one system call of the save.
  static Outcome MakeFailing(const Output& output, const std::string& path, const char* call,
                             const char* kind, int number) {
    const std::string value = std::to_string(number);
    setenv("LD_PRELOAD", TORVANE_FAULT_INJECTOR, 1);
    setenv("ASAN_OPTIONS", "verify_asan_link_order=0", 1);
    setenv("TORVANE_FAULT_CALL", call, 1);
    setenv(kind, value.c_str(), 1);
    Outcome outcome = Make(output, path);
    for (const char* name : {"LD_PRELOAD", "ASAN_OPTIONS", "TORVANE_FAULT_CALL", kind}) {
      unsetenv(name);
    }
    return outcome;
  }

  const fs::path folder_ = TemporaryPath("outputs");
};

TEST_F(OutputsTest, AreWholeOrNotAtAllWhateverFails) {
  const std::pair<const char*, int> faults[] = {
      {"open", EACCES}, {"write", ENOSPC}, {"fchmod", EPERM}, {"fsync", EIO}, {"rename", EBUSY}};
  for (const Output& output : Outputs) {
    const std::string path = Old(output.Name);
    for (const auto& [call, reason] : faults) {
      const Outcome outcome = MakeFailing(output, path, call, "TORVANE_FAULT_ERRNO", reason);
      const std::string what = std::string(output.Command) + " " + output.Name + " " + call;
      EXPECT_EQ(outcome.Code, 3) << what;
      EXPECT_TRUE(outcome.Err.starts_with("Error: Cannot ")) << what << outcome.Err;
      EXPECT_TRUE(outcome.Err.ends_with(path + ": " + std::strerror(reason) + "\n"))
          << what << outcome.Err;
      EXPECT_EQ(ReadWholeFile(path), "old") << what;
      EXPECT_EQ(FileCount(), 1) << what;
    }
    EXPECT_EQ(Make(output, path).Code, 0) << output.Command;
    EXPECT_GT(ReadWholeFile(path).size(), 50U) << output.Command;
    fs::remove(path);
  }
}

// A request to end waits for the save; what a kill leaves is removed by the next one.
TEST_F(OutputsTest, SignalsLeaveNothingBehind) {
  const Output& output = Outputs[0];
  const std::string path = Old(output.Name);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    EXPECT_EQ(MakeFailing(output, path, "fsync", "TORVANE_FAULT_SIGNAL", signal).Code, -1);
    EXPECT_TRUE(ReadWholeFile(path).starts_with("Application,"));
    EXPECT_EQ(FileCount(), 1) << signal;
  }
  EXPECT_EQ(MakeFailing(output, path, "rename", "TORVANE_FAULT_SIGNAL", SIGKILL).Code, -1);
  EXPECT_EQ(FileCount(), 2);
  EXPECT_EQ(Make(output, path).Code, 0);
  EXPECT_EQ(FileCount(), 1);
}

TEST_F(OutputsTest, OfACommandThatFailsStayAsTheyWere) {
  const std::string path = Old("a.csv");
  EXPECT_EQ(RunCli({"scope", "1", "--until", "1e-4", "--out", path}).Code, 1);
  EXPECT_EQ(ReadWholeFile(path), "old");
  CliProcess process({"bode", "1", "--input", "Command", "--output", "Response", "--start-delay",
                      "1e6", "--out", path});
  // Whether it comes before the measurement or in it, the file stays.
  process.Signal(SIGINT);
  EXPECT_NE(process.Wait().Code, 0);
  EXPECT_EQ(ReadWholeFile(path), "old");
}

#ifdef TORVANE_PICTURES
TEST_F(OutputsTest, OfOneNameAreRefused) {
  const std::string path = folder_ / "a.svg";
  fs::create_symlink("a.svg", folder_ / "link.csv");
  for (const std::string& other :
       {path, (folder_ / "." / "a.svg").string(), (folder_ / "link.csv").string()}) {
    const Outcome outcome =
        RunCli({"scope", "1", "--until", "1", "--out", other, "--picture", path});
    EXPECT_EQ(outcome.Code, 2) << other;
    EXPECT_NE(outcome.Err.find("name one file"), std::string::npos) << outcome.Err;
    EXPECT_FALSE(fs::exists(path));
  }
}

TEST_F(OutputsTest, PipesAreWrittenInPlace) {
  const std::string path = folder_ / "a.svg";
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  CliProcess process({"scope", "1", "--until", "0.1", "--picture", path});
  EXPECT_TRUE(ReadWholeFile(path).ends_with("</svg>\n"));
  EXPECT_EQ(process.Wait().Code, 0);
  EXPECT_TRUE(fs::is_fifo(path));
}
#endif

}  // namespace
}  // namespace torvane::test
