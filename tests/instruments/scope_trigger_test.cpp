#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "core/bench.h"
#include "instruments/scope/scope.h"

namespace torvane::test {

namespace {

using Detection = ZelTrigger::Detection;

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

}  // namespace

TEST(ScopeTrigger, ComparesTheDisplayedValueStrictly) {
  TriggerBench b;
  b.Trigger.SetLevel(1.0);  // met by a signal of -0.5
  EXPECT_FALSE(b.StepAt(1, -3.0));
  EXPECT_EQ(b.Trigger.State(), Detection::Arming);
  EXPECT_FALSE(b.StepAt(2, -0.5));
  EXPECT_EQ(b.Trigger.State(), Detection::Armed);
  EXPECT_FALSE(b.StepAt(3, -0.5));
  EXPECT_TRUE(b.StepAt(4, -0.500001));
  EXPECT_EQ(b.Trigger.State(), Detection::Idle);
  EXPECT_EQ(b.Trigger.FireTime(), 4.0);
  EXPECT_FALSE(b.StepAt(20, 0.0));

  TriggerBench falling;
  falling.Trigger.SetPositiveSlope(false);
  EXPECT_FALSE(falling.StepAt(1, 0.0));
  EXPECT_FALSE(falling.StepAt(2, 0.0));
  EXPECT_FALSE(falling.StepAt(3, -1.0));
  EXPECT_TRUE(falling.StepAt(4, 1e-300));
}

TEST(ScopeTrigger, CountsEventsAndDelaysAfterTheLast) {
  TriggerBench b;
  b.Trigger.SetCountEvents(true);
  b.Trigger.SetNumberOfEvents(3);
  b.Trigger.SetDelayAfter(true);
  b.Trigger.SetDelayAfterTime(2.5);
  // High at odd times. Each crossing needs a return, which arms on a step of its own.
  for (int t = 0; t <= 4; ++t) EXPECT_FALSE(b.StepAt(t, t % 2 ? -1.0 : 1.0)) << t;
  EXPECT_FALSE(b.StepAt(5, -1.0));
  EXPECT_EQ(b.Trigger.State(), Detection::DelayAfter);
  EXPECT_FALSE(b.StepAt(7.49, 1.0));
  EXPECT_TRUE(b.StepAt(7.5, 1.0));

  // The lowest count, and a delay of nothing, fire on the first event.
  TriggerBench lowest;
  lowest.Trigger.SetCountEvents(true);
  lowest.Trigger.SetNumberOfEvents(std::numeric_limits<std::int32_t>::min());
  lowest.Trigger.SetDelayAfter(true);
  EXPECT_FALSE(lowest.StepAt(0, 1.0));
  EXPECT_TRUE(lowest.StepAt(1, -1.0));
}

TEST(ScopeTrigger, IgnoresEventsForTenDivisionsAfterFiring) {
  TriggerBench b;
  b.StepAt(0, 1.0);
  EXPECT_TRUE(b.StepAt(1, -1.0));
  b.Trigger.Rearm();
  EXPECT_FALSE(b.StepAt(10.99, 1.0));
  EXPECT_EQ(b.Trigger.State(), Detection::Arming);
  EXPECT_FALSE(b.StepAt(11, 1.0));
  EXPECT_EQ(b.Trigger.State(), Detection::Armed);
  // Choosing a sweep mode leaves the detection alone, and ends the hold-off in all but Cont.
  b.Trigger.SetMode(SweepMode::Normal);
  EXPECT_EQ(b.Trigger.State(), Detection::Armed);
  EXPECT_TRUE(b.StepAt(12, -1.0));
  b.Trigger.Rearm();
  b.Trigger.SetMode(SweepMode::Cont);
  EXPECT_FALSE(b.StepAt(13, 1.0));
  EXPECT_EQ(b.Trigger.State(), Detection::Arming);
  b.Trigger.SetMode(SweepMode::Auto);
  EXPECT_FALSE(b.StepAt(13, 1.0));
  EXPECT_EQ(b.Trigger.State(), Detection::Armed);
}

TEST(ScopeTrigger, AutoSweepsAtOnceThenEveryTwentyAndAHalfDivisions) {
  TriggerBench b;
  b.Time.Value = 5.0;
  b.Trigger.SetMode(SweepMode::Auto);
  EXPECT_FALSE(b.Trigger.AutoTimeout());
  b.Time.Value = 5.001;
  b.Trigger.SetMode(SweepMode::Normal);
  EXPECT_FALSE(b.Trigger.AutoTimeout());
  b.Trigger.SetMode(SweepMode::Auto);
  b.Time.Value = 6.0;
  EXPECT_TRUE(b.Trigger.AutoTimeout());
  b.Time.Value = 26.5;
  EXPECT_FALSE(b.Trigger.AutoTimeout());
  // The present scale counts, and its sign does not.
  b.Scope.SetHorizontalScale(b.Reference, -2.0);
  b.StepAt(27, 1.0);
  EXPECT_TRUE(b.StepAt(28, -1.0));
  b.Time.Value = 28 + 41.0;
  EXPECT_FALSE(b.Trigger.AutoTimeout());
  b.Time.Value = 28 + 41.5;
  EXPECT_TRUE(b.Trigger.AutoTimeout());
}

TEST(ScopeTrigger, EverySetterRestartsDetectionInitialDelayIncluded) {
  TriggerBench b;
  b.Trigger.SetInitialDelay(true);
  b.Trigger.SetInitialDelayTime(3.0);
  EXPECT_FALSE(b.StepAt(2.9, 1.0));
  EXPECT_EQ(b.Trigger.State(), Detection::InitialDelay);
  EXPECT_FALSE(b.StepAt(3.0, 1.0));
  EXPECT_EQ(b.Trigger.State(), Detection::Armed);  // both in one step
  const auto arm = [&b] {
    b.StepAt(4.0, 1.0);
    return b.Trigger.State() == Detection::Armed;
  };
  const std::vector<void (*)(TriggerBench&)> setters = {
      [](TriggerBench& t) { t.Trigger.SetSource(t.Source); },
      [](TriggerBench& t) { t.Trigger.SetPositiveSlope(true); },
      [](TriggerBench& t) { t.Trigger.SetInitialDelay(true); },
      [](TriggerBench& t) { t.Trigger.SetInitialDelayTime(3.0); },
      [](TriggerBench& t) { t.Trigger.SetCountEvents(false); },
      [](TriggerBench& t) { t.Trigger.SetNumberOfEvents(1); },
      [](TriggerBench& t) { t.Trigger.SetDelayAfter(false); },
      [](TriggerBench& t) { t.Trigger.SetDelayAfterTime(0.0); }};
  for (std::size_t i = 0; i < setters.size(); ++i) {
    ASSERT_TRUE(arm()) << i;
    setters[i](b);
    EXPECT_EQ(b.Trigger.State(), Detection::InitialDelay) << i;
  }
}

TEST(ScopeTrigger, LampsShareOneCounter) {
  TriggerBench a;
  TriggerBench b;
  TriggerLamp lampA;
  TriggerLamp lampB;
  a.StepAt(0, 1.0);
  a.StepAt(1, -1.0);
  for (int refresh = 1; refresh <= 5; ++refresh) {
    lampA.Refresh(a.Trigger);
    EXPECT_TRUE(lampA.Lit()) << refresh;
  }
  lampA.Refresh(a.Trigger);
  EXPECT_FALSE(lampA.Lit());

  a.Trigger.Rearm();
  a.StepAt(11, 1.0);
  a.StepAt(12, -1.0);
  // Two lamps count twice a refresh, and neither lights for the other's event.
  int lit = 0;
  for (int refresh = 0; refresh < 10; ++refresh) {
    lampA.Refresh(a.Trigger);
    lampB.Refresh(b.Trigger);
    lit += lampA.Lit();
    EXPECT_FALSE(lampB.Lit());
  }
  EXPECT_EQ(lit, 3);
}

}  // namespace torvane::test
