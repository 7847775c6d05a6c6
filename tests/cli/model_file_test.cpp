#include <gtest/gtest.h>

#include <fstream>

#include "cli/cli_process.h"

namespace torvane::test {
namespace {

std::string Written(const std::string& name, const std::string& text) {
  const std::string path = TemporaryPath(name);
  std::ofstream(path, std::ios::binary) << text;
  return path;
}

TEST(ModelFiles, AreCheckedWithTheLineOfEachReport) {
  const std::string good = Written("good.tvf", "Model,3-1 PI Controller\nConstant,KP,0.7\n");
  const Outcome fine = RunCli({"check", good});
  EXPECT_EQ(fine.Code, 0) << fine.Err;
  EXPECT_EQ(fine.Out + fine.Err, "");

  const std::string bad = Written(
      "bad.tvf",
      "Constant,KP\r\nXfer,MainXFer,tEndDelay,1e9\nModel,3-1 PI Controller\nConstant,K,1\n");
  const Outcome wrong = RunCli({"check", bad});
  EXPECT_EQ(wrong.Code, 3);
  EXPECT_EQ(wrong.Err,
            "Error: " + bad + ":1: File error:  wrong number entries in Constant,KP\n" + "Error: " +
                bad + ":4: File error: Constant not found in this line: Constant,K,1\n" +
                "Error: " + bad + ":2: Attempt to set tEndDelay >= 100% of Sample Time\n");

  EXPECT_EQ(RunCli({"check", Written("none.tvf", "Constant,KP,1\n")}).Code, 3);
  EXPECT_EQ(RunCli({"check", Written("unknown.tvf", "Model,Nothing\n")}).Code, 3);
  const Outcome missing = RunCli({"check", TemporaryPath("missing.tvf")});
  EXPECT_EQ(missing.Code, 3);
  EXPECT_EQ(missing.Err,
            "Error: Cannot open " + TemporaryPath("missing.tvf") + ": No such file or directory\n");
}

// What the desktop passes over without a word.
TEST(ModelFiles, AreRemarkedOn) {
  const std::pair<std::string, std::string> lines[] = {
      {"Application,Torvane--Melkorin, 2nd Edition", ""},
      {"Model,3-1 PI Controller", ""},
      {"Constant,KP,1e9", "KP is limited to 1e+06"},
      {"Constant,KI,7", ""},
      {"Constant,KI,08.0", ""},
      {"Rubbish", "ignored: Rubbish"},
      {"Scope", "ignored: Scope"},
      {"WaveGen,Main,Offset,1", "ignored: WaveGen,Main,Offset,1"},
      {"Scope,MainScope,Trigger,NumEvents,-1", "taken as: Scope,MainScope,Trigger,NumEvents,1"},
      {"Scope,MainScope,Trigger,TInitDelay,-1", "taken as: Scope,MainScope,Trigger,TInitDelay,0"},
      {"Scope,MainScope,Trigger,TDelayAfter,1e308",
       "taken as: Scope,MainScope,Trigger,TDelayAfter,1e+09"},
      {"Scope,MainScope,Trigger,RollMode,2", "taken as: Scope,MainScope,Trigger,RollMode,0"},
      {"Scope,MainScope,Channel,Error,yes,1,0,0,1,0",
       "taken as: Scope,MainScope,Channel,Error,0,1,0,0,1,0"},
      {"Xfer,MainXFer,FreqMin,1e308", "taken as: Xfer,MainXFer,FreqMin,1E29"},
      {"Xfer,MainXFer,FreqMax,1", "taken as: Xfer,MainXFer,FreqMax,1.01E29"},
      {"Meter,M,AC,3", "taken as: Meter,M,AC,0"},
      {"WaveGen,MainWaveGen,DutyCycle,120", "taken as: WaveGen,MainWaveGen,DutyCycle,100"},
      {std::string("Rub\0\x1b[31m\xc2\x9b", 11), "a control character in the line"},
  };
  std::string text;
  std::string expected;
  const std::string path = TemporaryPath("remarks.tvf");
  int number = 0;
  for (const auto& [line, remark] : lines) {
    text += line + "\n";
    ++number;
    const std::string place = "Note: " + path + ":" + std::to_string(number) + ": ";
    if (!remark.empty()) expected += place + remark + "\n";
  }
  const std::string last = "Note: " + path + ":" + std::to_string(number) + ": ";
  expected += last + "ignored: Rub\\x00\\x1b[31m\xc2\\x9b\n";
  expected += last + "the last line has no end; it may be cut short\n";
  text.pop_back();
  const Outcome outcome = RunCli({"check", Written("remarks.tvf", text)});
  EXPECT_EQ(outcome.Code, 3);
  EXPECT_EQ(outcome.Err, expected);

  // What is limited is limited once: later saves change nothing more.
  const std::string first = TemporaryPath("limited.tvf");
  const std::string second = TemporaryPath("limited-again.tvf");
  EXPECT_EQ(RunCli({"convert", path, first}).Code, 0);
  EXPECT_EQ(RunCli({"convert", first, second}).Code, 0);
  EXPECT_EQ(ReadWholeFile(first), ReadWholeFile(second));
  EXPECT_EQ(RunCli({"check", first}).Err, "");
}

TEST(ModelFiles, AreConverted) {
  const std::string first = TemporaryPath("first.tvf");
  const std::string second = TemporaryPath("second.tvf");
  EXPECT_EQ(RunCli({"convert", "6-1 PID Controller", first, "--set", "KVP=0.1"}).Code, 0);
  EXPECT_EQ(RunCli({"convert", first, second}).Code, 0);
  EXPECT_EQ(ReadWholeFile(first), ReadWholeFile(second));
  EXPECT_NE(ReadWholeFile(first).find("Constant,KVP,0.1\r\n"), std::string::npos);
  EXPECT_EQ(RunCli({"convert", first, "/dev/full"}).Code, 3);
}

// A file's set-up is what the options would have said; options still have the last word.
TEST(ModelFiles, SetUpEveryCommand) {
  const std::string file = Written(
      "set-up.tvf",
      "Model,3-1 PI Controller\nConstant,KP,0.9\nScope,MainScope,Channel,Error,1,1,0,0,1,0\n"
      "Xfer,MainXFer,InputChannel,Error\nXfer,MainXFer,Order,8\nXfer,MainXFer,tEndDelay,0.01\n"
      "SweptDSA,MainSweptDSA,FreqMin,50\nSweptDSA,MainSweptDSA,FreqMax,100\n"
      "SweptDSA,MainSweptDSA,InputChannel,Error\nSweptDSA,MainSweptDSA,StepsPerDecade,5\n"
      "Meter,M,VariableVar,Response\nMeter,M,Average,1\nWaveGen,MainWaveGen,Offset,3\n");
  // `both` goes with either, `instead` with the model alone.
  const auto same = [&](const std::string& command, const std::string& instead,
                        const std::string& both) {
    const Outcome a = RunCliLine(command + " '" + file + "'" + both);
    EXPECT_EQ(a.Code, 0) << a.Err;
    const Outcome b = RunCliLine(command + " 1 --set KP=0.9 --wave Offset=3" + instead + both);
    EXPECT_EQ(b.Code, 0) << b.Err;
    EXPECT_EQ(a.Out, b.Out) << command;
    EXPECT_FALSE(a.Out.empty());
  };
  same("run", "", " --until 0.01 --every 0.001");
  same("bode", " --input Error --order 8 --end-delay 0.01", " --output Response");
  same("sweep", " --input Error --output Response --from 50 --to 100 --per-decade 5", "");
  same("meter", " --variable Response --kind average", " --until 0.1");
  const Outcome scope = RunCli({"scope", file, "--until", "0.5"});
  EXPECT_EQ(Lines(scope.Out).front(), "Time,Command,Error,Control,Response");
  EXPECT_NE(RunCli({"constants", file}).Out.find("KP,,0.6,0,"), std::string::npos);
  EXPECT_NE(RunCli({"constants", file}).Out.find(",Value,Description\n"), std::string::npos);
  EXPECT_EQ(RunCli({"signals", file}).Out, RunCli({"signals", "1"}).Out);
  EXPECT_EQ(RunCli({"speed", file, "--for", "0.05"}).Code, 0);
  EXPECT_EQ(Lines(RunCli({"bode", file, "--order", "6", "--end-delay", "0"}).Out).size(), 34U);
  EXPECT_EQ(RunCliLine("bode 1 --output Response").Code, 2);
  EXPECT_EQ(RunCliLine("meter 1 --until 1").Code, 2);
}

}  // namespace
}  // namespace torvane::test
