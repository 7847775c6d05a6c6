#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <vector>

#include "core/bench.h"
#include "instruments/scope/scope.h"

namespace torvane::test {

namespace {

using enum ZelTrigger::Detection;

/// At 1 s a division; the signal is shown by the factor -2.
struct TriggerBench {
  bool StepAt(double t, double value) {
    Time.Value = t;
    Signal.Value = value;
    return Trigger.Step();
  }
  bool TimeoutAt(double t) {
    Time.Value = t;
    return Trigger.AutoTimeout();
  }

  ZelBenchTop Bench;
  TimeVariable Time{Bench, "Time", "sec", {.Scale = 1.0}};
  Variable Signal{Bench, "Signal", "", {.Multiplier = -2.0}};
  ZelChannel Source{Signal};
  ZelScope Scope{Bench, "Scope"};  // the time reference is its
  ZelChannel& Reference = Scope.TimeChannel();
  ZelTrigger Trigger{Source, Reference};
};

/// What is set before a step of the detection, and what has to come of the step.
struct Step {
  std::function<void(ZelTrigger&)> Set;
  double Time, Value;
  bool Fires;
  ZelTrigger::Detection State;
};

void Play(const std::vector<Step>& steps) {
  TriggerBench b;
  for (const Step& step : steps) {
    if (step.Set) step.Set(b.Trigger);
    EXPECT_EQ(b.StepAt(step.Time, step.Value), step.Fires) << step.Time << " " << step.Value;
    EXPECT_EQ(b.Trigger.State(), step.State) << step.Time << " " << step.Value;
    EXPECT_EQ(b.Trigger.ConsumeFired(), step.Fires);
    EXPECT_EQ(step.Fires ? b.Trigger.FireTime() : step.Time, step.Time);
  }
}

}  // namespace

TEST(ScopeTrigger, FindsCrossingsOfTheDisplayedValue) {
  Play({{[](auto& t) { t.SetLevel(1.0); }, 1, -3.0, false, Arming},  // met by a signal of -0.5
        {{}, 2, -0.5, false, Armed},
        {{}, 3, -0.5, false, Armed},
        {{}, 4, -0.500001, true, Idle},
        {{}, 20, 0.0, false, Idle}});
  Play({{[](auto& t) { t.SetPositiveSlope(false); }, 1, 0.0, false, Armed},
        {{}, 2, 0.0, false, Armed},
        {{}, 3, -1.0, false, Armed},
        {{}, 4, 1e-300, true, Idle}});
}

TEST(ScopeTrigger, CountsEventsAndDelaysAfterTheLast) {
  const auto countThree = [](ZelTrigger& t) {
    t.SetCountEvents(true);
    t.SetNumberOfEvents(3);
    t.SetDelayAfter(true);
    t.SetDelayAfterTime(2.5);
  };
  // Each crossing needs a return, which arms on a step of its own.
  Play({{countThree, 0, 1.0, false, Armed},
        {{}, 1, -1.0, false, Arming},
        {{}, 2, 1.0, false, Armed},
        {{}, 3, -1.0, false, Arming},
        {{}, 4, 1.0, false, Armed},
        {{}, 5, -1.0, false, DelayAfter},
        {{}, 7.49, 1.0, false, DelayAfter},
        {{}, 7.5, 1.0, true, Idle}});
  // The lowest count, and a delay of nothing, fire on the first event.
  const auto countNone = [](ZelTrigger& t) {
    t.SetCountEvents(true);
    t.SetNumberOfEvents(std::numeric_limits<std::int32_t>::min());
    t.SetDelayAfter(true);
  };
  Play({{countNone, 0, 1.0, false, Armed}, {{}, 1, -1.0, true, Idle}});
}

TEST(ScopeTrigger, IgnoresEventsForTenDivisionsAfterFiring) {
  const auto rearm = [](ZelTrigger& t) { t.Rearm(); };
  const auto rearmCont = [](ZelTrigger& t) {
    t.Rearm();
    t.SetMode(SweepMode::Cont);
  };
  // Choosing a sweep mode leaves the detection alone, and ends the hold-off in all but Cont.
  Play({{{}, 0, 1.0, false, Armed},
        {{}, 1, -1.0, true, Idle},
        {rearm, 10.99, 1.0, false, Arming},
        {{}, 11, 1.0, false, Armed},
        {[](auto& t) { t.SetMode(SweepMode::Normal); }, 12, -1.0, true, Idle},
        {rearmCont, 13, 1.0, false, Arming},
        {[](auto& t) { t.SetMode(SweepMode::Auto); }, 13, 1.0, false, Armed}});
}

TEST(ScopeTrigger, EverySetterRestartsDetectionInitialDelayIncluded) {
  TriggerBench b;
  b.Trigger.SetInitialDelay(true);
  b.Trigger.SetInitialDelayTime(3.0);
  EXPECT_FALSE(b.StepAt(2.9, 1.0));
  EXPECT_EQ(b.Trigger.State(), InitialDelay);
  const std::vector<std::function<void(ZelTrigger&)>> setters = {
      [&](auto& t) { t.SetSource(b.Source); },  [](auto& t) { t.SetPositiveSlope(true); },
      [](auto& t) { t.SetInitialDelay(true); }, [](auto& t) { t.SetInitialDelayTime(3.0); },
      [](auto& t) { t.SetCountEvents(false); }, [](auto& t) { t.SetNumberOfEvents(1); },
      [](auto& t) { t.SetDelayAfter(false); },  [](auto& t) { t.SetDelayAfterTime(0.0); }};
  for (const auto& set : setters) {
    EXPECT_FALSE(b.StepAt(3.0, 1.0));
    EXPECT_EQ(b.Trigger.State(), Armed);  // both in one step
    set(b.Trigger);
    EXPECT_EQ(b.Trigger.State(), InitialDelay);
  }
}

TEST(ScopeTrigger, AutoSweepsAtOnceThenEveryTwentyAndAHalfDivisions) {
  TriggerBench b;
  b.Time.Value = 5.0;
  b.Trigger.SetMode(SweepMode::Auto);
  EXPECT_FALSE(b.TimeoutAt(5.0));
  EXPECT_TRUE(b.TimeoutAt(5.001));
  b.Trigger.SetMode(SweepMode::Normal);
  EXPECT_FALSE(b.TimeoutAt(100.0));
  b.Time.Value = 6.0;
  b.Trigger.SetMode(SweepMode::Auto);
  EXPECT_TRUE(b.TimeoutAt(6.5));
  EXPECT_FALSE(b.TimeoutAt(27.0));
  // The present scale counts, and its sign does not.
  b.Scope.SetHorizontalScale(b.Reference, -2.0);
  b.StepAt(27, 1.0);
  EXPECT_TRUE(b.StepAt(28, -1.0));
  EXPECT_FALSE(b.TimeoutAt(28 + 41.0));
  EXPECT_TRUE(b.TimeoutAt(28 + 41.5));
}

// An event lights a lamp for five refreshes; two lamps count twice a refresh, and neither lights
// for the other's event.
TEST(ScopeTrigger, LampsShareOneCounter) {
  TriggerBench a, b;
  TriggerLamp lampA, lampB;
  for (const int expected : {5, 3}) {
    a.StepAt(11.0 * expected, 1.0);
    EXPECT_TRUE(a.StepAt(11.0 * expected + 1.0, -1.0));
    int lit = 0;
    for (int refresh = 0; refresh < 10; ++refresh) {
      lampA.Refresh(a.Trigger);
      if (expected == 3) lampB.Refresh(b.Trigger);
      lit += lampA.Lit();
      EXPECT_FALSE(lampB.Lit());
    }
    EXPECT_EQ(lit, expected);
    a.Time.Value = 0.0;
    a.Trigger.SetMode(SweepMode::Normal);
    a.Trigger.Rearm();
  }
}

}  // namespace torvane::test
