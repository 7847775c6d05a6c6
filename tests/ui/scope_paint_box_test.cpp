#include "ui/panes/scope/scope_paint_box.h"

#include <gtest/gtest.h>

#include <QTest>

#include "plot/two_traces.h"

namespace torvane {
namespace {

// A frame mixed two sweeps: the one being captured and what was left of the one before.
TEST(ScopePaintBoxTest, QuickSweepsAreShownWholeAndSlowOnesAsTheyGrow) {
  test::TwoTraces set;
  ScopePaintBox box;
  box.resize(640, 480);
  box.show();
  box.SetScope(set.Scope);
  const auto picture = [&] {
    box.Refresh();
    return box.grab().toImage();
  };
  set.Speed.Value = 1.0;
  set.Sample(1200);
  const QImage whole = picture();
  EXPECT_EQ(box.Shown(), ScopeSweep::Whole);
  set.Speed.Value = -1.0;
  set.Sample(20);
  EXPECT_EQ(picture(), whole);

  // The present sweep goes on for more than a tenth of a second.
  EXPECT_TRUE(QTest::qWaitFor([&] {
    if (set.Scope.FillIndex() < 300) set.Sample(1);
    box.Refresh();
    return box.Shown() == ScopeSweep::Present;
  }));
  const QImage growing = picture();
  EXPECT_NE(growing, whole);
  // Standing still, it stays as it is.
  EXPECT_EQ(picture(), growing);
}

// A frame clears and paints only what traces touch.
TEST(ScopePaintBoxTest, APictureOfManyFramesIsThatOfANewWindow) {
  test::TwoTraces set;
  ScopePaintBox box;
  box.resize(640, 480);
  box.show();
  box.SetScope(set.Scope);
  for (int frame = 0; frame < 30; ++frame) {
    for (int i = 0; i < 130; ++i) {
      set.Speed.Value = (i * frame % 100 - 50) * 0.05 * (1 + frame % 3);
      set.Command.Value = frame % 4;
      set.Sample(1);
    }
    if (frame % 10 == 5) set.Scope.KeepTraces(box.Screen());
    box.Refresh();
  }
  // Several sweeps at once are quick ones, however slow the frames before were.
  set.Sample(1300);
  box.Refresh();
  ScopePaintBox fresh;
  fresh.resize(640, 480);
  fresh.show();
  fresh.SetScope(set.Scope);
  fresh.Refresh();
  ASSERT_EQ(box.Shown(), fresh.Shown());
  EXPECT_EQ(box.grab().toImage(), fresh.grab().toImage());
  // Also in another size, though nothing runs.
  for (ScopePaintBox* one : {&box, &fresh}) one->resize(500, 400);
  QCoreApplication::processEvents();
  EXPECT_EQ(box.grab().toImage(), fresh.grab().toImage());
}

}  // namespace
}  // namespace torvane
