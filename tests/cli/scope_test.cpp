#include <gtest/gtest.h>

#include <filesystem>

#include "cli/cli_process.h"

namespace torvane::test {
namespace {

TEST(Scope, PrintsTheLastCompleteScreen) {
  const Outcome outcome = RunCli({"scope", "3-1 PI Controller", "--until", "1"});
  ASSERT_EQ(outcome.Code, 0) << outcome.Err;
  const Table table = ParseTable(outcome.Out);
  ASSERT_EQ(table.Rows(), 401U);
  ASSERT_GE(table.Header.size(), 3U);
  EXPECT_EQ(table.Header[0], "Time");
  EXPECT_EQ(table.Header[1], "Command");
  const std::vector<double>& time = table.Columns[0];
  EXPECT_LE(time.back(), 1.0);
  // 400 intervals span the screen; a sample stands at most a step of 1e-5 s after its instant, and
  // single precision near 1 s adds 6e-8 s.
  const double interval = (time.back() - time.front()) / 400.0;
  for (std::size_t i = 1; i < time.size(); ++i) {
    ASSERT_NEAR(time[i] - time[i - 1], interval, 1.2e-5 * 2.0) << i;
  }
  // The last one: the next screen would have to end after the time given.
  EXPECT_GT(time.back() + 3.0 * (time.back() - time.front()), 1.0);
}

// The screen shows what a recording of the same run shows at the same times.
TEST(Scope, ShowsTheTrajectoryInDisplayUnits) {
  const Table screen = ParseTable(RunCli({"scope", "2-1 PI+ Controller", "--until", "0.5"}).Out);
  const Table rows = ParseTable(RunCli({"run", "2-1 PI+ Controller", "--until", "0.5", "--every",
                                        "1e-5", "--record", screen.Header.at(1)})
                                    .Out);
  std::size_t row = 0;
  std::size_t compared = 0;
  for (std::size_t point = 0; point < screen.Rows(); ++point) {
    // The scope's time is that of the step's start, the row's that of its end: the row after it.
    while (row < rows.Rows() && rows.Columns[0][row] < screen.Columns[0][point] + 0.5e-5) ++row;
    if (row == rows.Rows()) break;
    // Samples are single-precision numbers: 24 bits, about 6e-8 of the value.
    ASSERT_NEAR(screen.Columns[1][point], rows.Columns[1][row],
                1e-7 * std::abs(rows.Columns[1][row]) + 1e-12)
        << point;
    ++compared;
  }
  EXPECT_EQ(compared, screen.Rows());
}

TEST(Scope, WithoutACompleteScreenSaysSo) {
  const Outcome outcome = RunCli({"scope", "3-1 PI Controller", "--until", "1e-4"});
  EXPECT_EQ(outcome.Code, 1);
  EXPECT_TRUE(outcome.Err.starts_with("Error: the scope completed no screen by ")) << outcome.Err;
  EXPECT_EQ(outcome.Out, "");
}

#ifdef TORVANE_PICTURES
TEST(Scope, DrawsTheScreen) {
  for (const auto& [ending, start] :
       {std::pair{".png", "\x89PNG"}, {".svg", "<?xml"}, {".pdf", "%PDF"}}) {
    const std::string picture = TemporaryPath(std::string("screen") + ending);
    const Outcome outcome = RunCli({"scope", "1", "--until", "1", "--picture", picture});
    EXPECT_EQ(outcome.Code, 0);
    EXPECT_EQ(outcome.Err, "");
    EXPECT_TRUE(ReadWholeFile(picture).starts_with(start)) << picture;
    EXPECT_GT(std::filesystem::file_size(picture), 1000U);
  }
  EXPECT_EQ(RunCli({"scope", "1", "--until", "1", "--picture", "/nowhere/a.png"}).Code, 3);
}
#else
TEST(Scope, RefusesPicturesThatItWasBuiltWithout) {
  const std::string picture = TemporaryPath("screen.png");
  const Outcome outcome = RunCli({"scope", "1", "--until", "1", "--picture", picture});
  EXPECT_EQ(outcome.Code, 2);
  EXPECT_EQ(outcome.Err, "Error: --picture: this torvane-cli was built without pictures\n");
  EXPECT_FALSE(std::filesystem::exists(picture));
}
#endif

}  // namespace
}  // namespace torvane::test
