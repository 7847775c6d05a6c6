#include <gtest/gtest.h>

#include "cli/cli_process.h"

namespace torvane::test {
namespace {

TEST(Models, OneALineWithIndexAndTab) {
  const Outcome outcome = RunCli({"models"});
  EXPECT_EQ(outcome.Code, 0);
  const auto lines = Lines(outcome.Out);
  ASSERT_EQ(lines.size(), 15U);
  EXPECT_EQ(lines.front(), "0\t2-1 PI+ Controller");
  EXPECT_EQ(lines.back(), "14\tSeminar--Analog PI Controller");
}

TEST(Constants, AreListedByNameOrIndexOfTheModel) {
  const Outcome outcome = RunCli({"constants", "3-1 PI Controller"});
  EXPECT_EQ(outcome.Code, 0);
  const auto lines = Lines(outcome.Out);
  ASSERT_EQ(lines.size(), 8U);
  EXPECT_EQ(lines[0], "Name,Unit,Default,Lower,Upper,Choices,Description");
  EXPECT_EQ(lines[1], "KP,,0.6,0,1e+06,,Proportional gain: Control per Error");
  EXPECT_TRUE(lines[7].starts_with("Wind-up,%,120,100,10000,,"));
  EXPECT_EQ(RunCli({"constants", "1"}).Out, outcome.Out);
}

TEST(Constants, OfAListShowTheirChoices) {
  const auto lines = Lines(RunCli({"constants", "4-1 Digital PI Controller"}).Out);
  EXPECT_TRUE(lines.at(8).starts_with("Feedback,,0,0,1,Tach|Encoder,"));
}

TEST(Signals, AreThoseOfferedToInstruments) {
  const Outcome outcome = RunCli({"signals", "0"});
  EXPECT_EQ(outcome.Code, 0);
  const auto lines = Lines(outcome.Out);
  ASSERT_EQ(lines.size(), 10U);
  EXPECT_EQ(lines[0], "Name,Unit,State,Description");
  EXPECT_EQ(lines[2], "vM,RPM,1,Motor velocity (RPM)");
  EXPECT_EQ(lines[6], "pF,Revs,0,Not used in this loop (Revs)");
}

TEST(Program, AnswersHelpAndVersionOnStandardOutput) {
  const Outcome help = RunCli({"--help"});
  EXPECT_EQ(help.Code, 0);
  EXPECT_EQ(help.Err, "");
  for (const char* command :
       {"models", "constants", "signals", "run", "scope", "speed", "bode", "sweep", "meter"}) {
    EXPECT_NE(help.Out.find(command), std::string::npos) << command;
    EXPECT_EQ(RunCli({command, "--help"}).Code, 0) << command;
  }
  EXPECT_TRUE(RunCli({"--version"}).Out.starts_with("torvane-cli "));
}

}  // namespace
}  // namespace torvane::test
