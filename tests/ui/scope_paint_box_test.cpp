#include "ui/panes/scope_paint_box.h"

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

}  // namespace
}  // namespace torvane
