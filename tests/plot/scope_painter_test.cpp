#include "plot/scope/scope_painter.h"

#include <gtest/gtest.h>

#include <QImage>
#include <ctime>

#include "plot/scope/cursor_painter.h"
#include "two_traces.h"

namespace torvane {
namespace {

// What a live window does: paints what is new on what stands there.
class ScopePainterTest : public testing::Test {
 protected:
  ScopePainterTest() { Begin({640, 480}); }

  void Begin(const QSize& size) {
    painter_.Layout(size, 1.0, MakeScopeLabels(set_.Scope, nullptr));
    picture_ = QImage(size, QImage::Format_RGB32);
    QPainter painter(&picture_);
    painter_.PaintBackground(painter, ScopeColours::Light());
    background_ = picture_;
  }
  QRect PaintNew() {
    set_.Scope.CopyScreen(ScopeSweep::Present, screen_);
    QPainter painter(&picture_);
    return painter_.PaintNew(painter, ScopeColours::Light(), screen_);
  }
  QImage PaintedAnew() {
    QImage picture = background_;
    QPainter painter(&picture);
    painter_.PaintTraces(painter, ScopeColours::Light(), screen_);
    return picture;
  }
  /// Pixels that differ clearly, of those `where` picks; the screen's corner is 0,0.
  template <class Where>
  int Differing(const QImage& a, const QImage& b, Where where) const {
    int count = 0;
    const QPoint corner = painter_.Plate().topLeft();
    for (int y = 0; y < a.height(); ++y) {
      for (int x = 0; x < a.width(); ++x) {
        const bool differ = qAbs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y))) > 64;
        count += differ && where(QPoint(x, y) - corner);
      }
    }
    return count;
  }

  test::TwoTraces set_;
  ScopePainter painter_{set_.Scope};
  ScopeScreen screen_;
  QImage picture_;
  QImage background_;
};

TEST_F(ScopePainterTest, TracesGrowByWhatIsNew) {
  EXPECT_TRUE(PaintNew().isEmpty());
  QRect last = painter_.Plate();
  last.setWidth(0);
  for (int part = 0; part < 7; ++part) {
    for (int i = 0; i < 50; ++i) {
      set_.Speed.Value = (i - 30) / 30.0;
      set_.Sample(1);
    }
    const QRect area = PaintNew();
    EXPECT_TRUE(PaintNew().isEmpty());
    EXPECT_TRUE(painter_.Plate().contains(area));
    // Each area begins where the one before ended, give or take a line's width.
    EXPECT_NEAR(area.left(), last.right(), 8);
    last = area;
  }
  EXPECT_LT(painter_.Touched().boundingRect().height(), painter_.Plate().height() * 3 / 4);
  const auto untouched = [this](const QPoint& at) {
    return !painter_.Touched().contains(at + painter_.Plate().topLeft());
  };
  EXPECT_GT(Differing(picture_, background_, [](const QPoint&) { return true; }), 1000);
  EXPECT_EQ(Differing(picture_, background_, untouched), 0);
  EXPECT_FALSE(painter_.Differs(screen_));
  // Lines begin at other points, so shades may differ at the joints.
  EXPECT_LT(Differing(picture_, PaintedAnew(), [](const QPoint&) { return true; }), 100);
  set_.Scope.SetVerticalOffset(*set_.Scope.FindChannel("Speed"), 0.5);
  EXPECT_TRUE(painter_.Differs(screen_));
  PaintedAnew();
  set_.Scope.KeepTraces(screen_);
  EXPECT_TRUE(painter_.Differs(screen_));
}

TEST_F(ScopePainterTest, ATraceFarOffTheScreenStaysInsideItsFrame) {
  for (const double value : {1e30, -1e30}) {
    set_.Speed.Value = value;
    set_.Sample(150);
  }
  PaintNew();
  const QSize plate = painter_.Plate().size();
  const auto outside = [&](const QPoint& at) { return !QRect({0, 0}, plate).contains(at); };
  EXPECT_EQ(Differing(picture_, background_, outside), 0);
}

// Two traces that swing from edge to edge with each point took more than a second.
TEST_F(ScopePainterTest, DenseTracesArePaintedInTime) {
  for (int i = 0; i < 401; ++i) {
    set_.Speed.Value = set_.Command.Value = i % 2 ? 1e9 : -1e9;
    set_.Sample(1);
  }
  Begin({1920, 1080});
  const std::clock_t start = std::clock();
  PaintNew();
  EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC / 5);
}

TEST_F(ScopePainterTest, CursorsAreReadAnewWhenTheyReadSomethingElse) {
  set_.Sample(300);
  PaintNew();
  CursorPainter cursors(set_.Scope);
  cursors.Layout(QRect(100, 20, 800, 400), 1.0);
  set_.Scope.SetCursorMode(2);
  set_.Scope.SetCursorX(1, 200);
  // Where the sweep has not come yet there is nothing to read, and of a hidden trace no value.
  set_.Scope.SetCursorX(0, 700);
  EXPECT_TRUE(cursors.Read(screen_, set_.Scope.FindChannel("Hidden")));
  EXPECT_FALSE(cursors.Read(screen_, set_.Scope.FindChannel("Hidden")));
  ASSERT_EQ(cursors.Notes().size(), 1U);
  EXPECT_EQ(cursors.Notes()[0].Lines, QStringList{"2: 0.025249 sec"});
}

}  // namespace
}  // namespace torvane
