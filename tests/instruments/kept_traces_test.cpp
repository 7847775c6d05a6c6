#include "instruments/scope/kept_traces.h"

#include <gtest/gtest.h>

#include <utility>

#include "core/constant.h"
#include "instruments/analyser/trace_origin.h"
#include "scope_bench.h"

namespace torvane {
namespace {

// A sweep of the ramp that begins with an event: at 40 s a division the first 80 points are before
// it, and the ramp crosses the level at `at`.
ScopeScreen SweepWithEventAt(test::ScopeBench& set, int at) {
  set.Scope.Trigger().SetMode(SweepMode::Normal);
  set.Scope.Trigger().SetLevel(at - 1.0);
  set.Ramp(0, at + 320);
  return set.Screen();
}

TEST(KeptTraces, StandEventUponEventOnTheLiveTimeScale) {
  test::ScopeBench set;
  const ScopeScreen kept = SweepWithEventAt(set, 1000);
  ASSERT_EQ(kept.EventTime, 1000.0);
  ScopeScreen live;
  live.Left = 4990.0;
  live.EventTime = 5000.0;
  // A tenth of the time base: what is shown goes from 10 s before the event to 30 s after it.
  set.Scope.SetHorizontalScale(set.Scope.TimeChannel(), 4.0);
  ScopeScreen shown = OnTimeAxisOf(set.Scope, kept, live);
  EXPECT_EQ(shown.Left, 990.0);
  ASSERT_EQ(shown.PointCount(), 41);
  EXPECT_EQ(shown.Time.front(), 990.0);
  EXPECT_EQ(shown.Values[0].back(), 1030.0F);
  // Lines that leave the screen between two points end at its edge.
  live.Left = 4989.5;
  shown = OnTimeAxisOf(set.Scope, kept, live);
  ASSERT_EQ(shown.PointCount(), 42);
  EXPECT_EQ(shown.Time.front(), 989.5);
  EXPECT_EQ(shown.Values[0].front(), 989.5F);
  EXPECT_EQ(shown.Values[0].back(), 1029.5F);
  // Ten times the time base: all of it, where its time is. Without an event, from the left edge.
  set.Scope.SetHorizontalScale(set.Scope.TimeChannel(), 400.0);
  live.Left = 4200.0;
  shown = OnTimeAxisOf(set.Scope, kept, live);
  EXPECT_EQ(shown.PointCount(), kept.PointCount());
  EXPECT_EQ(shown.Time.front() - shown.Left, 800.0 - (1000.0 - kept.Left));
  live.EventTime.reset();
  EXPECT_EQ(OnTimeAxisOf(set.Scope, kept, live).Left, kept.Left);
}

TEST(KeptTraces, KeepingAndClearingAreUndone) {
  test::ScopeBench set;
  set.Ramp(0, 5);
  const auto keep = [&](int until) {
    set.Ramp(until, until);
    set.Scope.KeepTraces(set.Screen());
  };
  const auto last = [&] { return set.Scope.Kept() ? set.Scope.Kept()->Time.back() : -1.0; };
  ZelUndo& history = set.Bench.History();
  keep(6);
  const int first = set.Scope.KeptIdentity();
  keep(7);
  set.Scope.ShowKeptTraces(first);
  EXPECT_EQ(last(), 6.0);
  history.Undo();
  set.Scope.ClearKeptTraces();
  EXPECT_EQ(last(), -1.0);
  for (const auto& [undo, then] : {std::pair{true, 7.0}, {true, 6.0}, {false, 7.0}, {true, 6.0}}) {
    undo ? history.Undo() : history.Redo();
    EXPECT_EQ(last(), then);
  }
  keep(8);  // in place of what was undone
  for (const double then : {6.0, -1.0}) {
    history.Undo();
    EXPECT_EQ(last(), then);
  }
  for (int i = 0; i < 2 * ZelUndo::Depth; ++i) keep(10 + i);
  for (int i = 0; i < ZelUndo::Depth; ++i) history.Undo();
  EXPECT_EQ(last(), 10.0 + ZelUndo::Depth - 1);
}

// A sweep is told by the constants that it began with, not by those at which it is kept; and two
// changes between sweeps, a scrolled screen and what an undo brings back are told like any other.
TEST(KeptTraces, TellTheConstantsThatDiffer) {
  test::ScopeBench set;
  Constant gain(set.Bench, "KP", "", 1.0, 0.0, 10.0);
  Constant reset(set.Bench, "KI", "", 5.0, 0.0, 10.0);
  set.Scope.Trigger().SetMode(SweepMode::Cont);
  const auto told = [&] {
    const ScopeScreen* const kept = set.Scope.Kept();
    return kept && kept->Origin ? KeptOriginText(*kept->Origin, *set.Scope.Origin()) : "none";
  };
  int at = 0;
  while (!set.Scope.TakeScreenCompleted()) set.Ramp(at, at), ++at;
  gain.Set(2.0);
  set.Scope.KeepTraces(set.Screen(ScopeSweep::Whole));
  EXPECT_EQ(told(), "");  // nothing has been measured with the new one yet
  reset.Set(6.0);
  set.Ramp(at, at + 2);
  EXPECT_EQ(told(), "KP = 1 (now 2), KI = 5 (now 6)");
  EXPECT_EQ(OnTimeAxisOf(set.Scope, *set.Scope.Kept(), set.Screen()).Origin,
            set.Scope.Kept()->Origin);
  set.Scope.KeepTraces(set.Screen());
  EXPECT_EQ(told(), "");
  set.Bench.History().Undo();
  EXPECT_EQ(told(), "KP = 1 (now 2), KI = 5 (now 6)");
  set.Bench.History().Redo();
  gain.Set(3.0);
  set.Scope.Trigger().SetRoll(true);
  set.Ramp(at + 3, at + 900);  // it scrolls by now
  EXPECT_EQ(told(), "KP = 2 (now 3)");
  gain.Set(4.0);
  set.Ramp(at + 901, at + 910);
  EXPECT_EQ(told(), "KP = 2 (now 4)");
  ScopeScreen elsewhere = set.Screen();
  elsewhere.Origin.reset();
  set.Scope.KeepTraces(elsewhere);
  EXPECT_EQ(told(), "none");
}

TEST(KeptTraces, TellThreeConstantsAtMostByName) {
  const TraceOrigin kept{0.0, {{"A", "1"}, {"B", "1"}, {"Gone", "1"}, {"C", "1"}, {"D", "1"}}};
  const TraceOrigin now{0.0, {{"D", "2"}, {"C", "2"}, {"New", "2"}, {"B", "1"}, {"A", "2"}}};
  EXPECT_EQ(KeptOriginText(kept, now), "A = 1 (now 2), C = 1 (now 2), D = 1 (now 2)");
  TraceOrigin more = now;
  more.Constants.emplace_back("Gone", "2");
  EXPECT_EQ(KeptOriginText(kept, more),
            "A = 1 (now 2), Gone = 1 (now 2), C = 1 (now 2) and 1 more");
}

}  // namespace
}  // namespace torvane
