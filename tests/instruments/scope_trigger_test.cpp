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

/// A step of the detection, what has to come of it, and what is set before it.
struct Step {
  double Time, Value;
  ZelTrigger::Detection State;
  std::function<void(ZelTrigger&)> Set = {};
};

void Play(const std::vector<Step>& steps) {
  TriggerBench b;
  for (const Step& step : steps) {
    if (step.Set) step.Set(b.Trigger);
    const bool fires = step.State == Idle && b.Trigger.State() != Idle;
    EXPECT_EQ(b.StepAt(step.Time, step.Value), fires) << step.Time << " " << step.Value;
    EXPECT_EQ(b.Trigger.State(), step.State) << step.Time << " " << step.Value;
    EXPECT_EQ(b.Trigger.ConsumeFired(), fires);
    EXPECT_EQ(fires ? b.Trigger.FireTime() : step.Time, step.Time);
  }
}

}  // namespace

TEST(ScopeTrigger, FindsCrossingsOfTheDisplayedValue) {
  const auto high = [](ZelTrigger& t) { t.SetLevel(1.0); };  // met by a signal of -0.5
  Play({{1, -3.0, Arming, high},
        {2, -0.5, Armed},
        {3, -0.5, Armed},
        {4, -0.500001, Idle},
        {20, 0.0, Idle}});
  const auto falling = [](ZelTrigger& t) { t.SetPositiveSlope(false); };
  Play({{1, 0.0, Armed, falling}, {2, 0.0, Armed}, {3, -1.0, Armed}, {4, 1e-300, Idle}});
}

TEST(ScopeTrigger, CountsEventsAndDelaysAfterTheLast) {
  const auto count = [](int events, double delay) {
    return [=](ZelTrigger& t) {
      t.SetCountEvents(true);
      t.SetNumberOfEvents(events);
      t.SetDelayAfter(true);
      t.SetDelayAfterTime(delay);
    };
  };
  // Each crossing needs a return, which arms on a step of its own.
  Play({{0, 1.0, Armed, count(3, 2.5)},
        {1, -1.0, Arming},
        {2, 1.0, Armed},
        {3, -1.0, Arming},
        {4, 1.0, Armed},
        {5, -1.0, DelayAfter},
        {7.49, 1.0, DelayAfter},
        {7.5, 1.0, Idle}});
  // The lowest count, and a delay of nothing, fire on the first event.
  Play({{0, 1.0, Armed, count(std::numeric_limits<int>::min(), 0.0)}, {1, -1.0, Idle}});
}

TEST(ScopeTrigger, IgnoresEventsForTenDivisionsAfterFiring) {
  const auto rearm = [](ZelTrigger& t) { t.Rearm(); };
  const auto rearmCont = [](ZelTrigger& t) {
    t.Rearm();
    t.SetMode(SweepMode::Cont);
  };
  // Choosing a sweep mode leaves the detection alone, and ends the hold-off in all but Cont.
  const auto normal = [](ZelTrigger& t) { t.SetMode(SweepMode::Normal); };
  const auto automatic = [](ZelTrigger& t) { t.SetMode(SweepMode::Auto); };
  Play({{0, 1.0, Armed},
        {1, -1.0, Idle},
        {10.99, 1.0, Arming, rearm},
        {11, 1.0, Armed},
        {12, -1.0, Idle, normal},
        {13, 1.0, Arming, rearmCont},
        {13, 1.0, Armed, automatic}});
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
