#include <gtest/gtest.h>

#include <cmath>
#include <csignal>
#include <filesystem>
#include <thread>

#include "cli/cli_process.h"

namespace torvane::test {
namespace {

Table RunTable(const Arguments& more) {
  Arguments arguments{"run", "3-1 PI Controller"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  const Outcome outcome = RunCli(arguments);
  EXPECT_EQ(outcome.Code, 0) << outcome.Err;
  return ParseTable(outcome.Out);
}

TEST(Run, RecordsEverySignalUnlessTold) {
  const std::vector<std::string> all{"Time",     "Command", "Error",    "Power",
                                     "Feedback", "Control", "Response", "ErrorInt"};
  EXPECT_EQ(RunTable({"--until", "0.01", "--every", "0.01"}).Header, all);
  const std::vector<std::string> some{"Time", "Response", "Command", "Response"};
  EXPECT_EQ(
      RunTable({"--until", "0.01", "--every", "0.01", "--record", "Response, Command,Response"})
          .Header,
      some);
}

// A row stands at the first boundary that is within a millionth of a step of its multiple or past
// it, and a step gives one row at most.
TEST(Run, RowsStandAtTheirMultiples) {
  constexpr double Step = 1e-5;
  constexpr double Near = 1e-6 * Step;
  const Table table = RunTable({"--until", "0.01", "--every", "0.00033", "--record", "Command"});
  // 30 multiples of 0.00033 fit into 0.01; the run goes on to 0.01 without a row there.
  ASSERT_EQ(table.Rows(), 31U);
  for (std::size_t k = 0; k < table.Rows(); ++k) {
    const double due = static_cast<double>(k) * 0.00033;
    EXPECT_GE(table.Columns[0][k], due - Near);
    EXPECT_LT(table.Columns[0][k], due + Step - Near);
  }
  const Table dense = RunTable({"--until", "0.001", "--every", "3e-6", "--record", "Command"});
  ASSERT_EQ(dense.Rows(), 101U);
  double sum = 0.0;
  for (const double time : dense.Columns[0]) {
    EXPECT_EQ(time, sum);
    sum += Step;
  }
}

TEST(Run, RecordingMoreOftenLeavesTheTrajectoryAlone) {
  const Table fine = RunTable({"--until", "0.02", "--every", "0.0001"});
  const Table coarse = RunTable({"--until", "0.02", "--every", "0.005"});
  std::size_t matched = 0;
  for (std::size_t row = 0, other = 0; row < coarse.Rows(); ++row) {
    while (other < fine.Rows() && fine.Columns[0][other] < coarse.Columns[0][row]) ++other;
    if (other == fine.Rows() || fine.Columns[0][other] != coarse.Columns[0][row]) continue;
    ++matched;
    for (std::size_t i = 0; i < fine.Columns.size(); ++i) {
      EXPECT_EQ(fine.Columns[i][other], coarse.Columns[i][row]) << fine.Header[i];
    }
  }
  EXPECT_GE(matched, 4U);
}

// The multiplier of a velocity turns rad/s into RPM; the generator's amplitude is given in RPM.
TEST(Run, PrintsValuesInDisplayUnits) {
  const Outcome outcome =
      RunCli({"run", "2-1 PI+ Controller", "--until", "0.001", "--every", "0.001", "--record", "vC",
              "--wave", "Waveform=DC (None)", "--wave", "Offset=40"});
  ASSERT_EQ(outcome.Code, 0) << outcome.Err;
  // 2 pi / 60 as the model takes it, times the exact multiplier: equal to 8 digits.
  EXPECT_NEAR(ParseTable(outcome.Out).Columns[1].back(), 40.0, 1e-6);
}

TEST(Run, SettingsOutsideTheirLimitsAreLimitedAndSaidSo) {
  const Outcome outcome = RunCli({"run",      "4-1 Digital PI Controller",
                                  "--until",  "0.001",
                                  "--every",  "0.001",
                                  "--record", "vC",
                                  "--set",    "KVP=1e9",
                                  "--set",    "Feedback=7",
                                  "--set",    "Res=-1",
                                  "--wave",   "FreqHz=-5",
                                  "--wave",   "DutyCycle=101",
                                  "--wave",   "Waveform=12"});
  EXPECT_EQ(outcome.Code, 0);
  EXPECT_EQ(outcome.Err,
            "Note: KVP is limited to 1000\n"
            "Note: Feedback is limited to 1 (Encoder)\n"
            "Note: Res is limited to 100\n"
            "Note: FreqHz is limited to 5\n"
            "Note: DutyCycle is limited to 100\n"
            "Note: Waveform is limited to 8 (DC (None))\n");
}

TEST(Run, ChoicesAndWaveformsAreTakenByTextOrIndex) {
  const auto run = [](const char* feedback, const char* waveform) {
    return RunCli({"run", "4-1 Digital PI Controller", "--until", "0.02", "--every", "0.001",
                   "--set", feedback, "--wave", waveform})
        .Out;
  };
  const std::string byText = run("Feedback=Encoder", "Waveform=Triangle");
  EXPECT_EQ(byText, run("Feedback=1", "Waveform=2"));
  EXPECT_NE(byText, run("Feedback=Tach", "Waveform=2"));
  EXPECT_NE(byText, run("Feedback=1", "Waveform=Sine"));
}

TEST(Run, AddressesGeneratorsByName) {
  const auto run = [](const char* wave) {
    return RunCli({"run", "16-1 Cascade Position Loop", "--until", "0.01", "--every", "0.005",
                   "--record", "vPC,tD", "--wave", "Waveform=8", "--wave", "Offset=3", "--wave",
                   "Disturbance Source:Waveform=8", "--wave", wave});
  };
  const Table table = ParseTable(run("Disturbance Source:Offset=0.5").Out);
  ASSERT_EQ(table.Columns.size(), 3U);
  EXPECT_NEAR(table.Columns[1].back(), 3.0, 1e-6);
  EXPECT_EQ(table.Columns[2].back(), 0.5);
}

TEST(Run, WritesTheFileInsteadOfStandardOutput) {
  const std::string path = TemporaryPath("rows.csv");
  const Outcome outcome = RunCli(
      {"run", "1", "--until", "0.01", "--every", "0.001", "--record", "Command", "--out", path});
  EXPECT_EQ(outcome.Code, 0);
  EXPECT_EQ(outcome.Out, "");
  EXPECT_EQ(ParseTable(ReadWholeFile(path)).Rows(), 11U);
}

// With the integrator and plant gains at their limits the loop is unstable.
TEST(Run, AnOverflowKeepsTheRowsSoFarAndSaysWhereItWas) {
  for (const bool yes : {false, true}) {
    Arguments arguments{"run",    "3-1 PI Controller", "--until", "100", "--every", "0.0001",
                        "--wave", "Amplitude=1e308"};
    if (yes) arguments.push_back("--yes");
    const Outcome outcome = RunCli(arguments);
    EXPECT_EQ(outcome.Code, 1);
    const auto messages = Lines(outcome.Err);
    ASSERT_EQ(messages.size(), 2U) << outcome.Err;
    EXPECT_TRUE(messages[0].starts_with("Error: An overflow occurred, posibly because "))
        << messages[0];
    EXPECT_NE(messages[0].find(yes ? "(OK)" : "(Cancel"), std::string::npos) << messages[0];
    EXPECT_NE(messages[1].find("overflow in "), std::string::npos) << messages[1];
    EXPECT_NE(messages[1].find("time"), std::string::npos) << messages[1];
    EXPECT_TRUE(outcome.Out.ends_with("\n"));
    EXPECT_GE(ParseTable(outcome.Out).Rows(), 1U);
  }
}

TEST(Run, FilesThatCannotBeWrittenAreReported) {
  const Arguments arguments{"run", "1", "--until", "0.1", "--every", "0.0001"};
  const auto withOut = [&](const std::string& path) {
    Arguments all = arguments;
    all.insert(all.end(), {"--out", path});
    return RunCli(all);
  };
  const Outcome noFolder = withOut("/nowhere/rows.csv");
  EXPECT_EQ(noFolder.Code, 3);
  EXPECT_EQ(noFolder.Err, "Error: Cannot open /nowhere/rows.csv: No such file or directory\n");
  const Outcome full = withOut("/dev/full");
  EXPECT_EQ(full.Code, 3);
  EXPECT_EQ(full.Err, "Error: Cannot write /dev/full: No space left on device\n");
  const Outcome fullOutput = RunCli(arguments, "/dev/full");
  EXPECT_EQ(fullOutput.Code, 3);
  EXPECT_EQ(fullOutput.Err, "Error: Cannot write standard output: No space left on device\n");
  EXPECT_EQ(RunCli({"models"}, "/dev/full").Code, 3);
  EXPECT_EQ(RunCli({"--help"}, "/dev/full").Code, 3);
}

// Waits until something has been written, for as long as a very slow machine may need.
bool WaitForContent(const std::string& path) {
  for (int tenths = 0; tenths < 600; ++tenths) {
    std::error_code error;
    if (std::filesystem::file_size(path, error) > 0 && !error) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
  return false;
}

TEST(Run, AnInterruptEndsItWithTheRowsSoFarWhole) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const std::string path = TemporaryPath("interrupted" + std::to_string(signal));
    CliProcess process({"run", "1", "--until", "1e6", "--every", "0.001", "--out", path});
    ASSERT_TRUE(WaitForContent(path));
    process.Signal(signal);
    const Outcome outcome = process.Wait();
    EXPECT_EQ(outcome.Code, 1);
    EXPECT_TRUE(outcome.Err.starts_with("Error: interrupted at ")) << outcome.Err;
    const std::string text = ReadWholeFile(path);
    EXPECT_TRUE(text.ends_with("\n"));
    const Table table = ParseTable(text);
    ASSERT_GT(table.Rows(), 1U);
    // Nothing that was recorded before the interrupt is missing: the last row is the last multiple.
    const double stopped =
        std::stod(outcome.Err.substr(std::string("Error: interrupted at ").size()));
    EXPECT_LT(stopped - table.Columns[0].back(), 0.001 + 1e-5);
  }
}

}  // namespace
}  // namespace torvane::test
