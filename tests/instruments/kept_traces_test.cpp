#include "instruments/scope/kept_traces.h"

#include <gtest/gtest.h>

#include <utility>

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
  keep(7);
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

}  // namespace
}  // namespace torvane
