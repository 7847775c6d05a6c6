#include <gtest/gtest.h>

#include <limits>

#include "core/files/record.h"
#include "instruments/scope_bench.h"
#include "support/recorder.h"

namespace torvane::test {

using Capture = ZelScope::Capture;

TEST(ScopeCapture, FirstScreenStartsAtExactlyTimeZeroInAutoOnly) {
  ScopeBench atZero;
  atZero.At(0.0, 7.0);
  EXPECT_EQ(atZero.Scope.State(), Capture::Filling);
  EXPECT_EQ(atZero.Values(), std::vector{7.0F});

  // A moment later Auto has to time out first, which shows history: all points but one.
  ScopeBench later;
  later.At(1e-9, 7.0);
  EXPECT_EQ(later.Scope.State(), Capture::Filling);
  EXPECT_EQ(later.Scope.FillIndex(), 399);
  EXPECT_EQ(later.Values()[399], 7.0F);

  ScopeBench normal;
  normal.Scope.Trigger().SetMode(SweepMode::Normal);
  normal.At(0.0, 7.0);
  EXPECT_EQ(normal.Scope.State(), Capture::Waiting);
}

TEST(ScopeCapture, AutoWithoutEventsSweepsFromHistory) {
  ScopeBench b;
  b.Ramp(0, 399);
  EXPECT_FALSE(b.Scope.TakeScreenCompleted());
  b.Ramp(400, 400);
  EXPECT_TRUE(b.Scope.TakeScreenCompleted());
  EXPECT_FALSE(b.Scope.TakeScreenCompleted());
  EXPECT_EQ(b.Scope.State(), Capture::Waiting);
  // The deadline is still the time at which Auto was chosen, so the next sample starts a sweep of
  // 400 past points, and the one after it fills the screen.
  b.Ramp(401, 401);
  EXPECT_EQ(b.Scope.FillIndex(), 399);
  EXPECT_EQ(b.Values()[0], 2.0F);
  b.Ramp(402, 402);
  EXPECT_TRUE(b.Scope.TakeScreenCompleted());
  // 20.5 divisions of 40 s after the sweep at 401 s, and strictly after.
  b.Ramp(403, 401 + 820);
  EXPECT_EQ(b.Scope.State(), Capture::Waiting);
  b.Ramp(1222, 1222);
  EXPECT_EQ(b.Scope.State(), Capture::Filling);
}

TEST(ScopeCapture, PositionIsCutToWholePerCentAndToTwoPointsAtLeast) {
  const struct {
    double Position;
    int Points;
  } cases[] = {{20.0, 80}, {20.9, 80}, {0.0, 2}, {0.9, 2}, {100.0, 400}, {1e300, 400}, {-5.0, 2}};
  for (const auto& [position, points] : cases) {
    SCOPED_TRACE(position);
    ScopeBench b;
    b.Scope.Trigger().SetMode(SweepMode::Normal);
    b.Scope.Trigger().SetPosition(position);
    b.Scope.Trigger().SetLevel(499.5);
    b.Ramp(0, 499);
    EXPECT_EQ(b.Scope.State(), Capture::Waiting);
    b.Ramp(500, 500);
    EXPECT_EQ(b.Scope.State(), Capture::Filling);
    EXPECT_EQ(b.Scope.FillIndex(), points - 1);
    // The sample that fired is the last point before the trigger.
    EXPECT_EQ(b.Values().back(), 500.0F);
    EXPECT_EQ(b.Values().front(), static_cast<float>(501 - points));
  }
}

TEST(ScopeCapture, HistoryBeforeTimeZeroHasNegativeTimes) {
  ScopeBench b;
  b.Scope.Trigger().SetMode(SweepMode::Normal);
  b.Scope.Trigger().SetLevel(9.5);
  b.Ramp(0, 10);
  const std::vector<double> time = b.Screen().Time;
  ASSERT_EQ(time.size(), 80U);
  EXPECT_EQ(time[79], 10.0);
  EXPECT_EQ(time[69], 0.0);
  // Spaced by the screen's time over all its points, not over its intervals.
  EXPECT_EQ(time[68], -400.0 / 401);
  EXPECT_EQ(time[0], -69 * 400.0 / 401);
  EXPECT_EQ(b.Values()[0], 0.0F);

  // A time base that is set before the first sample spaces them too.
  ScopeBench faster;
  faster.Scope.SetHorizontalScale(faster.Scope.TimeChannel(), 4.0);
  faster.Scope.Trigger().SetMode(SweepMode::Cont);
  faster.At(0.0, 0.0);
  EXPECT_EQ(faster.Screen().Time, (std::vector{-2 * 40.0 / 401, -40.0 / 401, 0.0}));
}

TEST(ScopeCapture, ContinuousStartsWithTwoPastPointsAndRollsByFive) {
  ScopeBench b;
  b.Scope.Trigger().SetMode(SweepMode::Cont);
  b.Scope.Trigger().SetRoll(true);
  b.At(0.0, 0.0);
  EXPECT_EQ(b.Scope.FillIndex(), 2);
  b.Ramp(1, 398);
  EXPECT_TRUE(b.Scope.TakeScreenCompleted());
  EXPECT_EQ(b.Scope.State(), Capture::Filling);
  EXPECT_EQ(b.Scope.StartIndex(), 5);
  EXPECT_TRUE(b.Scope.TakeNeedsRedraw());
  // Oldest point first, whatever the indices.
  EXPECT_EQ(b.Values().front(), 3.0F);
  b.Ramp(399, 402);
  EXPECT_EQ(b.Scope.StartIndex(), 5);
  EXPECT_EQ(b.Scope.FillIndex(), 3);
  b.Ramp(403, 403);
  EXPECT_EQ(b.Scope.StartIndex(), 10);
  ASSERT_EQ(b.Values(ScopeSweep::Whole).size(), 396U);
  EXPECT_EQ(b.Screen().Time.front(), 8.0);
  EXPECT_EQ(b.Values().back(), 403.0F);
}

TEST(ScopeCapture, TheLastWholeSweepIsKeptWhileTheNextOneFills) {
  ScopeBench b;
  b.Scope.Trigger().SetMode(SweepMode::Cont);
  b.At(0.0, 0.0);
  EXPECT_EQ(b.Values(ScopeSweep::Whole).size(), 3U);  // none yet: the present one
  b.Ramp(1, 398);
  const std::vector<float> whole = b.Values(ScopeSweep::Whole);
  EXPECT_EQ(whole, b.Values());
  b.Ramp(399, 600);
  EXPECT_EQ(b.Values(ScopeSweep::Whole), whole);
  EXPECT_EQ(b.Values().back(), 600.0F);
  // A sweep that is given up never shows as a whole one.
  b.Scope.SetSampleInterval();
  b.Ramp(601, 700);
  EXPECT_EQ(b.Values(ScopeSweep::Whole), whole);
  b.Ramp(701, 1000);
  EXPECT_EQ(b.Values(ScopeSweep::Whole).back(), 999.0F);
  EXPECT_EQ(b.Scope.SweepCount(), 4U);
}

// Single precision ends at 3.4e38: a sample beyond it would be infinite on the screen.
TEST(ScopeCapture, ASignalThatCannotBeShownEndsTheRun) {
  ScopeBench b;
  b.Ramp(0, 3);
  double t = 4.0;
  for (const double value : {-1e300, std::numeric_limits<double>::quiet_NaN(), 1e39}) {
    try {
      b.At(t++, value);
      ADD_FAILURE() << value;
    } catch (const SolverOverflow& overflow) {
      if (value != 1e39) continue;
      EXPECT_STREQ(
          overflow.what(),
          "signal \"Signal\" (value 1e+39) grew beyond what instruments can hold at time 0 s");
    }
  }
  b.Ramp(7, 7);
  EXPECT_EQ(b.Values(), (std::vector{0.0F, 1.0F, 2.0F, 3.0F, 7.0F}));
}

TEST(ScopeCapture, NormalDoesNotRoll) {
  ScopeBench b;
  b.Scope.Trigger().SetRoll(true);
  b.Ramp(0, 100);
  b.Scope.Trigger().SetMode(SweepMode::Normal);
  b.Ramp(101, 400);
  EXPECT_TRUE(b.Scope.TakeScreenCompleted());
  EXPECT_EQ(b.Scope.State(), Capture::Waiting);
  EXPECT_EQ(b.Scope.StartIndex(), 0);
}

TEST(ScopeCapture, SingleShotStopsTheRunUntilItIsSwitchedOffOrRunAgain) {
  ScopeBench b;
  b.Scope.SetSingleShot(true);
  b.Ramp(0, 399);
  EXPECT_TRUE(b.GoesOn);
  b.Ramp(400, 400);
  EXPECT_FALSE(b.GoesOn);
  EXPECT_EQ(b.Scope.State(), Capture::Stopped);
  b.Ramp(401, 450);
  EXPECT_TRUE(b.GoesOn);
  EXPECT_EQ(b.Scope.State(), Capture::Stopped);
  EXPECT_EQ(b.Trace().RingValue(401), 0.0F);

  b.Scope.Trigger().SetMode(SweepMode::Normal);
  b.Scope.Start();
  EXPECT_EQ(b.Scope.State(), Capture::Waiting);
  b.Scope.Trigger().SetMode(SweepMode::Cont);
  b.Ramp(451, 849);
  EXPECT_FALSE(b.GoesOn);

  b.Scope.Trigger().SetMode(SweepMode::Normal);
  b.Scope.SetSingleShot(false);
  EXPECT_EQ(b.Scope.State(), Capture::Stopped);
  b.Ramp(850, 850);
  EXPECT_EQ(b.Scope.State(), Capture::Waiting);
}

TEST(ScopeCapture, AFullScreenStopsTheModelAndTheScopeGoesOnWithIt) {
  ScopeBench b;
  b.Scope.SetStopsModel(true);
  b.Ramp(0, 399);
  EXPECT_TRUE(b.GoesOn);
  b.Ramp(400, 400);
  EXPECT_FALSE(b.GoesOn);
  b.Scope.Trigger().SetMode(SweepMode::Cont);
  b.Ramp(401, 798);
  EXPECT_TRUE(b.GoesOn);
  b.Ramp(799, 799);
  EXPECT_FALSE(b.GoesOn);
}

TEST(ScopeCapture, LoadingWaitsForTheTriggerAnewAndKeepsASourceThatIsNone) {
  Recorder recorder;
  ScopeBench b;
  b.Scope.SetSingleShot(true);
  b.Ramp(0, 400);
  EXPECT_EQ(b.Scope.State(), Capture::Stopped);
  b.Scope.LoadRecord(ParseRecord("Scope,MainScope,Trigger,Channel,Time", 1));
  EXPECT_EQ(recorder.Take(), Messages{"Error: Trigger Channel Invalid"});
  EXPECT_EQ(&b.Scope.Trigger().Source(), &b.Trace());
  b.Scope.FinishLoading([](int) {});
  EXPECT_EQ(b.Scope.State(), Capture::Waiting);
}

TEST(ScopeCapture, OneSampleAStepWhenTheStepIsLongerThanTheInterval) {
  IdleModel model(2.5);
  ZelScope scope(model.Bench(), "MainScope");
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
  EXPECT_EQ(model.Time(), 300.0);
  EXPECT_EQ(scope.FillIndex(), 2 + 19);
  model.RunChunk();
  EXPECT_EQ(model.Time(), 302.5);
  EXPECT_EQ(scope.FillIndex(), 2 + 20);
  model.RunChunk();
  EXPECT_EQ(model.Time(), 312.5);
}

TEST(ScopeCapture, NoTimeScaleStopsTheClock) {
  IdleModel model(1.0);
  ZelScope scope(model.Bench(), "MainScope");
  model.RunChunk();
  EXPECT_EQ(scope.State(), Capture::Filling);
  double expected = 0.0;
  for (const double scale : {1e-300, -1e-323, 1e300, 40.0, -40.0}) {
    SCOPED_TRACE(scale);
    EXPECT_TRUE(scope.SetHorizontalScale(scope.TimeChannel(), scale));
    EXPECT_EQ(scope.State(), Capture::Waiting);
    EXPECT_GT(scope.SampleInterval(), 0.0);
    // After one sample at 1e300 the next is for ever away, until the scale changes.
    const int chunks = scale == 1e300 ? 1 : 3;
    for (int k = 0; k < chunks; ++k) model.RunChunk();
    EXPECT_EQ(model.Time(), expected += chunks);
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
  EXPECT_EQ(scope.RingLength(), 802);
  EXPECT_EQ(bench.FindInstrument(InstrumentKind::Scope, "MainScope"), &scope);
  ASSERT_EQ(scope.Channels().size(), 11U);
  EXPECT_EQ(scope.Trigger().Source().Name(), "S0");
  const auto colours = [&] {
    std::vector<int> list;
    for (const auto& channel : scope.Channels()) list.push_back(channel->Colour());
    return list;
  };
  EXPECT_EQ(colours(), (std::vector{-1, 0, 1, 2, 3, 4, 5, 6, 7, -1, -1}));
  EXPECT_FALSE(scope.FindChannel("S8")->Displayed());
  EXPECT_EQ(scope.FindChannel("Inside"), nullptr);

  scope.SetDisplayed(*scope.FindChannel("S0"), false);
  scope.SetDisplayed(*scope.FindChannel("S9"), true);
  EXPECT_EQ(colours(), (std::vector{-1, -1, 0, 1, 2, 3, 4, 5, 6, -1, 7}));
  // An earlier channel pushes the last one out.
  scope.SetDisplayed(*scope.FindChannel("Unshown"), true);
  EXPECT_EQ(colours(), (std::vector{0, -1, 1, 2, 3, 4, 5, 6, 7, -1, -1}));
  EXPECT_FALSE(scope.FindChannel("S9")->Displayed());
  EXPECT_EQ(TraceColourAt(2).Rgb, 0x800000U);  // maroon: red is the high byte
}

TEST(ScopeCapture, ReportsWhatCannotBe) {
  Recorder recorder;
  ScopeBench b;
  ScopeMemory memory(b.Bench, b.Time, 401, 802);
  memory.ClearPostTrigger(0.01);
  EXPECT_EQ(recorder.Take(),
            Messages{"Error: Internal Error: Screen Not Full in ClearPostTrigger"});
  memory.StartScreenFromHistory(100.0);
  EXPECT_TRUE(memory.Advance(true));
  EXPECT_FALSE(memory.Advance(true));
  EXPECT_EQ(recorder.Take(), Messages{"Error: Internal Error: Screen Full"});

  ZelBenchTop timeless;
  ZelScope scope(timeless, "MainScope");
  EXPECT_EQ(recorder.Take(), Messages{"Fatal Error: Fault in ZelScope :: ZelScope"});
  EXPECT_TRUE(recorder.Ended);
  EXPECT_TRUE(scope.Sample(0.0));
}

}  // namespace torvane::test
