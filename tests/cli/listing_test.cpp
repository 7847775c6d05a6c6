#include <gtest/gtest.h>

#include <algorithm>

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
  EXPECT_EQ(outcome.Out,
            "Name,Unit,Default,Lower,Upper,Choices\n"
            "KP,,0.6,0,1e+06,\n"
            "KI,,100,0,10000,\n"
            "G,,500,0.1,1e+05,\n"
            "Power,Hz,800,50,2000,\n"
            "Feedback,Hz,350,50,2000,\n"
            "Sat,,100,1,10000,\n"
            "Wind-up,%,120,100,10000,\n");
  EXPECT_EQ(RunCli({"constants", "1"}).Out, outcome.Out);
}

TEST(Constants, OfAListShowTheirChoices) {
  const auto lines = Lines(RunCli({"constants", "4-1 Digital PI Controller"}).Out);
  EXPECT_TRUE(std::count(lines.begin(), lines.end(), "Feedback,,0,0,1,Tach|Encoder"));
}

TEST(Signals, AreThoseOfferedToInstruments) {
  const Outcome outcome = RunCli({"signals", "0"});
  EXPECT_EQ(outcome.Code, 0);
  EXPECT_EQ(outcome.Out,
            "Name,Unit,State\nvC,RPM,0\nvM,RPM,1\nvE,RPM,0\nvF,RPM,0\npM,Revs,1\npF,Revs,0\n"
            "iC,Amps,0\niF,Amps,0\ntM,Nm,0\n");
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
