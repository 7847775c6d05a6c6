#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

#include "core/files/record.h"
#include "core/text.h"
#include "instruments/scope_bench.h"
#include "support/bare_model.h"
#include "support/recorder.h"

namespace torvane::test {

namespace {

/// Does what a line of a script says.
void Do(ScopeBench& b, std::istringstream& line) {
  std::string what, first, last;
  line >> what;
  if (what == "start") return b.Scope.Start();
  line >> first;
  if (what == "set" || what == "load") {
    const Record record = ParseRecord("Scope,MainScope," + first, 1);
    what == "set" ? b.Scope.LoadState(record) : b.Scope.LoadRecord(record);
    return b.Scope.FinishLoading([](int) {});
  }
  line >> last;
  const double from = *ParseNumber(first);
  const double to = *ParseNumber(last);
  what == "at" ? b.At(from, to) : b.Ramp(static_cast<int>(from), static_cast<int>(to));
}

/// What the scope says to a question of a script.
std::string Tell(const ScopeBench& b, const std::string& question) {
  static constexpr const char* states[] = {"stopped", "filling", "waiting"};
  const ScopeScreen screen = b.Screen();
  if (question == "state") return states[static_cast<std::size_t>(b.Scope.State())];
  if (question == "points") return std::to_string(screen.PointCount());
  if (question == "first") return FormatShortest(screen.Values[0].front());
  if (question == "last") return FormatShortest(screen.Values[0].back());
  if (question == "starts") return std::to_string(b.Scope.StartIndex());
  if (question == "left") return FormatShortest(screen.Left);
  if (question == "whole") return FormatShortest(b.Values(ScopeSweep::Whole).back());
  return screen.EventTime ? FormatShortest(*screen.EventTime) : "none";
}

}  // namespace

TEST(ScopeCapture, FollowsItsScripts) {
  std::ifstream file(TORVANE_TEST_DATA "/scope_sweeps.txt");
  std::unique_ptr<ScopeBench> b;
  int questions = 0;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    if (line[0] == '=') {
      b = std::make_unique<ScopeBench>();
      continue;
    }
    SCOPED_TRACE(line);
    std::istringstream words(line);
    b->GoesOn = true;
    Do(*b, words);
    std::set<std::string> events;
    for (std::string word; words >> word; ++questions) {
      const std::size_t equals = word.find('=');
      if (word == "done" || word == "halt") {
        events.insert(word);
      } else if (equals == std::string::npos) {
        EXPECT_EQ(Tell(*b, "state"), word);
      } else {
        EXPECT_EQ(Tell(*b, word.substr(0, equals)), word.substr(equals + 1)) << word;
      }
    }
    EXPECT_EQ(b->Scope.TakeScreenCompleted(), events.contains("done"));
    EXPECT_EQ(b->GoesOn, !events.contains("halt"));
  }
  EXPECT_GT(questions, 80);
}

// Single precision ends at 3.4e38: a sample beyond it would be infinite on the screen.
TEST(ScopeCapture, ASignalThatCannotBeShownEndsTheRun) {
  ScopeBench b;
  b.Ramp(0, 3);
  double t = 4.0;
  for (const auto& [value, shown] :
       {std::pair{-1e300, " (value -1e+300)"}, {std::nan(""), ""}, {1e39, " (value 1e+39)"}}) {
    try {
      b.At(t++, value);
      ADD_FAILURE() << value;
    } catch (const SolverOverflow& overflow) {
      EXPECT_EQ(overflow.what(), std::string("signal \"Signal\"") + shown +
                                     " grew beyond what instruments can hold at time 0 s");
    }
  }
  b.Ramp(7, 7);
  EXPECT_EQ(b.Values(), (std::vector{0.0F, 1.0F, 2.0F, 3.0F, 7.0F}));
}

TEST(ScopeCapture, OneSampleAStepWhenTheStepIsLongerThanTheInterval) {
  BareModel model(2.5);
  ZelScope scope(model.Bench(), "MainScope");
  scope.SetHorizontalScale(scope.TimeChannel(), 40.0);
  for (int chunk = 0; chunk <= 100; ++chunk) {
    model.RunChunk();
    EXPECT_EQ(model.Time(), 2.5 * chunk);
    EXPECT_EQ(scope.FillIndex(), chunk);
  }
  // The clock is at 101 s by now. With intervals of 10 s it goes on sampling every step until it is
  // ahead: 101 + 10 k > 250 + 2.5 k first holds for k = 20.
  scope.SetHorizontalScale(scope.TimeChannel(), 400.0);
  scope.Trigger().SetMode(SweepMode::Cont);
  for (int step = 1; step <= 20; ++step) model.RunChunk();
  EXPECT_EQ(scope.FillIndex(), 2 + 19);
  for (const double time : {302.5, 312.5}) {
    model.RunChunk();
    EXPECT_EQ(model.Time(), time);
  }
}

TEST(ScopeCapture, NoTimeScaleStopsTheClock) {
  BareModel model(1.0);
  ZelScope scope(model.Bench(), "MainScope");
  scope.SetHorizontalScale(scope.TimeChannel(), 40.0);
  model.RunChunk();
  double expected = 0.0;
  for (const double scale : {1e-300, -1e-323, 1e300, 40.0, -40.0}) {
    scope.SetHorizontalScale(scope.TimeChannel(), scale);
    EXPECT_EQ(scope.State(), ZelScope::Capture::Waiting);
    EXPECT_GT(scope.SampleInterval(), 0.0);
    // After one sample at 1e300 the next is for ever away, until the scale changes.
    const int chunks = scale == 1e300 ? 1 : 3;
    for (int k = 0; k < chunks; ++k) model.RunChunk();
    EXPECT_EQ(model.Time(), expected += chunks) << scale;
  }
  EXPECT_EQ(scope.SampleInterval(), 1.0);
}

TEST(ScopeCapture, EightTracesAtMostInChannelOrder) {
  ZelBenchTop bench;
  TimeVariable time(bench, "Time", "sec", {});
  Variable first(bench, "Unshown", "", {});
  Variable internal(bench, "Inside", "", {.Shown = true}, Visibility::Internal);
  std::vector<std::unique_ptr<Variable>> shown;
  for (int i = 0; i < 10; ++i) {
    shown.push_back(std::make_unique<Variable>(bench, std::string("S").append(std::to_string(i)),
                                               "", DisplayDefaults{.Shown = true}));
  }
  ZelScope scope(bench, "MainScope", 401, 100);
  EXPECT_EQ(scope.Trigger().Source().Name(), "S0");
  EXPECT_EQ(scope.FindChannel("Inside"), nullptr);
  /// The colours' numbers in channel order, "-" for what is not shown.
  const auto colours = [&] {
    std::string list;
    for (const auto& channel : scope.Channels()) {
      list += channel->Displayed() ? std::to_string(channel->Colour()) : "-";
    }
    return list;
  };
  EXPECT_EQ(colours(), "-01234567--");
  scope.SetDisplayed(*scope.FindChannel("S0"), false);
  scope.SetDisplayed(*scope.FindChannel("S9"), true);
  EXPECT_EQ(colours(), "--1234567-0");
  // An earlier channel pushes the last one out.
  scope.SetDisplayed(*scope.FindChannel("Unshown"), true);
  EXPECT_EQ(colours(), "0-1234567--");
  bench.History().Undo();
  EXPECT_EQ(colours(), "--1234567-0");
  for (const char* name : {"S4", "S3", "S4"}) {
    ZelChannel& channel = *scope.FindChannel(name);
    scope.SetDisplayed(channel, !channel.Displayed());
  }
  EXPECT_EQ(colours(), "--12-3567-0");
  for (int i = 0; i < 3; ++i) bench.History().Undo();
  EXPECT_EQ(colours(), "--1234567-0");
  EXPECT_EQ(TraceColourAt(2).Rgb, 0x800000U);  // maroon: red is the high byte
}

}  // namespace torvane::test
