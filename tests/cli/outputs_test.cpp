#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "cli/cli_process.h"

namespace torvane::test {
namespace {

namespace fs = std::filesystem;

// Every kind of file that a command makes whole.
struct Output {
  const char* Command;  ///< the file's name follows
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
  OutputsTest() { fs::create_directories(Place); }
  ~OutputsTest() override { fs::remove_all(Place); }

  void PutOld(const std::string& path) const { std::ofstream(path) << "old"; }
  std::ptrdiff_t FileCount() const {
    return std::distance(fs::directory_iterator(Place), fs::directory_iterator());
  }
  /// Makes the file, with a fault in one system call of the save if there is one.
  static Outcome Make(const Output& output, const std::string& path, const std::string& call = "",
                      const std::string& fault = "") {
    const std::string injected =
        "export ASAN_OPTIONS=verify_asan_link_order=0 TORVANE_FAULT_CALL=" + call +
        " TORVANE_FAULT_" + fault + " LD_PRELOAD='" TORVANE_FAULT_INJECTOR "'; ";
    return Shell((call.empty() ? "" : injected) + "exec torvane-cli " + output.Command + " '" +
                 path + "'");
  }

  const std::string Place = Folder() + "outputs/";
};

TEST_F(OutputsTest, AreWholeOrNotAtAllWhateverFails) {
  const std::pair<const char*, int> faults[] = {
      {"open", EACCES}, {"write", ENOSPC}, {"fchmod", EPERM}, {"fsync", EIO}, {"rename", EBUSY}};
  for (const Output& output : Outputs) {
    const std::string path = Place + output.Name;
    PutOld(path);
    for (const auto& [call, reason] : faults) {
      const Outcome outcome = Make(output, path, call, "ERRNO=" + std::to_string(reason));
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
  const std::string path = Place + "a.tvf";
  PutOld(path);
  const auto ends = [&](const char* call, int signal) {
    return Make(Outputs[0], path, call, "SIGNAL=" + std::to_string(signal)).Code == -1;
  };
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    EXPECT_TRUE(ends("fsync", signal));
    EXPECT_TRUE(ReadWholeFile(path).starts_with("Application,"));
    EXPECT_EQ(FileCount(), 1) << signal;
  }
  EXPECT_TRUE(ends("rename", SIGKILL));
  EXPECT_EQ(FileCount(), 2);
  EXPECT_EQ(Make(Outputs[0], path).Code, 0);
  EXPECT_EQ(FileCount(), 1);
}

TEST_F(OutputsTest, OfACommandThatFailsStayAsTheyWere) {
  const std::string path = Place + "a.csv";
  PutOld(path);
  EXPECT_EQ(Shell("torvane-cli scope 1 --until 1e-4 --out " + path).Code, 1);
  EXPECT_EQ(ReadWholeFile(path), "old");
  const Process process(
      "exec torvane-cli bode 1 --input Command --output Response --start-delay 1e6 --out " + path);
  // Whether it comes before the measurement or in it, the file stays.
  kill(process.Id(), SIGINT);
  EXPECT_NE(process.Wait().Code, 0);
  EXPECT_EQ(ReadWholeFile(path), "old");
}

}  // namespace
}  // namespace torvane::test
