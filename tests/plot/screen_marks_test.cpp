#include "plot/screen_marks.h"

#include <gtest/gtest.h>

#include "plot/cursor_painter.h"
#include "two_traces.h"

namespace torvane {
namespace {

TEST(ScreenMarksTest, FlagsStandApartAsNearToTheirPlacesAsTheyCan) {
  struct Case {
    std::vector<int> Centres;
    std::vector<int> Tops;
  };
  const Case cases[] = {
      {{50}, {45}},
      {{50, 50, 50}, {35, 45, 55}},          // around the place that they share
      {{52, 20, 50}, {51, 15, 41}},          // in the order of their places
      {{0, 1}, {0, 10}},                     // kept inside
      {{99, 99, 78}, {80, 90, 70}},          // a group pushed up meets another one
      {{30, 40, 49, 80}, {24, 34, 44, 75}},  // a chain
  };
  for (const Case& c : cases) EXPECT_EQ(SpreadFlags(c.Centres, 10, 0, 100), c.Tops);
}

TEST(ScreenMarksTest, CursorsReadTimeAndValueBesideThem) {
  test::TwoTraces set;
  for (int i = 0; i < 300; ++i) {
    set.Speed.Value = i * 0.01;
    set.Sample(1);
  }
  ScopeScreen screen;
  set.Scope.CopyScreen(ScopeSweep::Present, screen);
  CursorPainter cursors(set.Scope);
  cursors.Layout(QRect(100, 20, 800, 400), 1.0);
  const auto lines = [&](std::size_t note) { return cursors.Notes().at(note).Lines.join(u'|'); };
  set.Scope.SetCursorMode(2);
  set.Scope.SetCursorX(0, 400);
  set.Scope.SetCursorX(1, 200);
  EXPECT_TRUE(cursors.Read(screen, set.Scope.FindChannel("Speed")));
  EXPECT_FALSE(cursors.Read(screen, set.Scope.FindChannel("Speed")));
  // Points stand 2 pixels and 0.25 ms apart; the one right of a cursor is read. A screen begins
  // with two points of history, the first of which is a guess.
  ASSERT_EQ(cursors.Notes().size(), 3U);
  EXPECT_EQ(lines(0), "1: 0.050249 sec|Speed 19.9");
  EXPECT_EQ(lines(1), "2: 0.025249 sec|Speed 9.9");
  EXPECT_EQ(lines(2), "dt 0.025 sec|1/dt 40 Hz|dSpeed 10");
  // Where the sweep has not come yet there is nothing to read, and of a hidden trace no value.
  set.Scope.SetCursorX(0, 700);
  cursors.Read(screen, set.Scope.FindChannel("Hidden"));
  ASSERT_EQ(cursors.Notes().size(), 1U);
  EXPECT_EQ(lines(0), "2: 0.025249 sec");
}

}  // namespace
}  // namespace torvane
