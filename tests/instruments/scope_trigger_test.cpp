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

  ZelBenchTop Bench;
  TimeVariable Time{Bench, "Time", "sec", {.Scale = 1.0}};
  Variable Signal{Bench, "Signal", "", {.Multiplier = -2.0}};
  ZelChannel Source{Signal};
  ZelScope Scope{Bench, "Scope"};  // the time reference is its
  ZelChannel& Reference = Scope.TimeChannel();
  ZelTrigger Trigger{Source, Reference};
};

/// A step of the detection, and what has to come of it.
struct Step {
  double Time, Value;
  ZelTrigger::Detection State;
};

void Play(TriggerBench& b, const std::vector<Step>& steps) {
  for (const Step& step : steps) {
    const bool fires = step.State == Idle && b.Trigger.State() != Idle;
    EXPECT_EQ(b.StepAt(step.Time, step.Value), fires) << step.Time << " " << step.Value;
    EXPECT_EQ(b.Trigger.State(), step.State) << step.Time << " " << step.Value;
    EXPECT_EQ(b.Trigger.ConsumeFired(), fires);
    EXPECT_EQ(fires ? b.Trigger.FireTime() : step.Time, step.Time);
  }
}

}  // namespace

TEST(ScopeTrigger, FindsCrossingsOfTheDisplayedValue) {
  TriggerBench high;
  high.Trigger.SetLevel(1.0);  // met by a signal of -0.5
  Play(high, {{1, -3.0, Arming}, {2, -0.5, Armed}, {3, -0.5, Armed}, {4, -0.500001, Idle}});
  Play(high, {{20, 0.0, Idle}});
  TriggerBench falling;
  falling.Trigger.SetPositiveSlope(false);
  Play(falling, {{1, 0.0, Armed}, {2, 0.0, Armed}, {3, -1.0, Armed}, {4, 1e-300, Idle}});
}

TEST(ScopeTrigger, CountsEventsAndDelaysAfterTheLast) {
  TriggerBench b;
  b.Trigger.SetCountEvents(true);
  b.Trigger.SetNumberOfEvents(3);
  b.Trigger.SetDelayAfter(true);
  b.Trigger.SetDelayAfterTime(2.5);
  // Each crossing needs a return, which arms on a step of its own.
  Play(b, {{0, 1.0, Armed}, {1, -1.0, Arming}, {2, 1.0, Armed}, {3, -1.0, Arming}});
  Play(b, {{4, 1.0, Armed}, {5, -1.0, DelayAfter}, {7.49, 1.0, DelayAfter}, {7.5, 1.0, Idle}});
  // The lowest count, and a delay of nothing, fire on the first event.
  b.Trigger.SetNumberOfEvents(std::numeric_limits<int>::min());
  b.Trigger.SetDelayAfterTime(0.0);
  Play(b, {{20, 1.0, Armed}, {21, -1.0, Idle}});
}

TEST(ScopeTrigger, IgnoresEventsForTenDivisionsAfterFiring) {
  TriggerBench b;
  Play(b, {{0, 1.0, Armed}, {1, -1.0, Idle}});
  b.Trigger.Rearm();
  Play(b, {{10.99, 1.0, Arming}, {11, 1.0, Armed}});
  // Choosing a sweep mode leaves the detection alone, and ends the hold-off in all but Cont.
  b.Trigger.SetMode(SweepMode::Normal);
  Play(b, {{12, -1.0, Idle}});
  b.Trigger.Rearm();
  b.Trigger.SetMode(SweepMode::Cont);
  Play(b, {{13, 1.0, Arming}});
  b.Trigger.SetMode(SweepMode::Auto);
  Play(b, {{13, 1.0, Armed}});
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
