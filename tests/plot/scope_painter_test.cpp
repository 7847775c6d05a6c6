#include "plot/scope_painter.h"

#include <gtest/gtest.h>

#include <QImage>
#include <ctime>

#include "two_traces.h"

namespace torvane {
namespace {

using test::TwoTraces;

constexpr QSize PictureSize(640, 480);

class ScopePainterTest : public testing::Test {
 protected:
  ScopePainterTest() {
    painter_.Layout(PictureSize, 1.0, MakeScopeLabels(set_.Scope, nullptr));
    picture_.fill(Qt::magenta);
    QPainter painter(&picture_);
    painter_.PaintBackground(painter, ScopeColours::Light());
  }

  const ScopeScreen& Screen() {
    set_.Scope.CopyScreen(ScopeSweep::Present, screen_);
    return screen_;
  }
  QRect PaintNew() {
    QPainter painter(&picture_);
    return painter_.PaintNew(painter, ScopeColours::Light(), Screen());
  }
  void PaintTraces() {
    QPainter painter(&picture_);
    painter_.PaintBackground(painter, ScopeColours::Light());
    painter_.PaintTraces(painter, ScopeColours::Light(), Screen());
  }

  // Whether the picture is blue, the colour of "Speed", at a point of the screen. Smooth lines
  // spread over neighbouring pixels, so one pixel to each side counts too.
  bool BlueAt(int x, int y) const {
    for (int dy = -1; dy <= 1; ++dy) {
      const QPoint at = painter_.Plate().topLeft() + QPoint(x, y + dy);
      const QColor colour = picture_.pixelColor(at);
      if (colour.blue() > 180 && colour.red() < 120 && colour.green() < 120) return true;
    }
    return false;
  }
  int X(int point) const { return painter_.Plate().width() * point / 400; }
  int Y(double divisions) const {
    return qRound(painter_.Plate().height() * (0.5 - divisions / 8));
  }

  TwoTraces set_;
  ScopePainter painter_{set_.Scope};
  ScopeScreen screen_;
  QImage picture_{PictureSize, QImage::Format_RGB32};
};

TEST_F(ScopePainterTest, BackgroundCoversThePictureWithTenByEightDivisions) {
  for (int y = 0; y < picture_.height(); ++y) {
    for (int x = 0; x < picture_.width(); ++x) {
      ASSERT_NE(picture_.pixelColor(x, y), QColor(Qt::magenta)) << x << "," << y;
    }
  }
  // Along a row between the horizontal lines: nine vertical ones besides the border.
  const QRect plate = painter_.Plate();
  EXPECT_TRUE(picture_.rect().contains(plate));
  int lines = 0;
  for (int x = plate.left() + 1; x < plate.right(); ++x) {
    if (picture_.pixelColor(x, plate.top() + plate.height() / 16) != ScopeColours::Light().Plate) {
      ++lines;
    }
  }
  EXPECT_EQ(lines, 9);
}

TEST_F(ScopePainterTest, TracesGrowByWhatIsNew) {
  EXPECT_TRUE(PaintNew().isEmpty());
  set_.Speed.Value = 1.0;  // times the multiplier 10 over 5 a division: two divisions up
  set_.Sample(200);
  const QRect first = PaintNew();
  EXPECT_TRUE(BlueAt(X(150), Y(2)));
  EXPECT_FALSE(BlueAt(painter_.Plate().width() * 3 / 4, Y(2)));
  EXPECT_TRUE(PaintNew().isEmpty());

  set_.Sample(150);
  const QRect second = PaintNew();
  EXPECT_TRUE(BlueAt(X(300), Y(2)));
  // The second area begins where the first one ended, give or take the width of a line.
  EXPECT_GT(second.left(), first.right() - 8);
  EXPECT_TRUE(painter_.Plate().contains(second));
}

TEST_F(ScopePainterTest, KeptTracesAreThinAndPaleBehindTheLiveOnes) {
  set_.Speed.Value = 1.0;
  set_.Sample(200);
  set_.Scope.KeepTraces(Screen());
  set_.Speed.Value = -1.0;
  set_.Sample(401);
  PaintTraces();
  const auto ink = [&](double divisions) {
    int blue = 0;
    for (int dy = -3; dy <= 3; ++dy) {
      const QPoint at = painter_.Plate().topLeft() + QPoint(X(100) + 3, Y(divisions) + dy);
      const QColor colour = picture_.pixelColor(at);
      blue += std::max(0, colour.blue() - colour.red());
    }
    return blue;
  };
  EXPECT_TRUE(BlueAt(X(100) + 3, Y(-2)));
  EXPECT_GT(ink(2), 50);
  EXPECT_LT(ink(2), ink(-2) / 2);
}

TEST_F(ScopePainterTest, PaintingAnewShowsWhatGrowingShowed) {
  for (int i = 0; i < 300; ++i) {
    set_.Speed.Value = (i % 60 - 30) / 30.0;
    set_.Sample(1);
    if (i % 7 == 0) PaintNew();
  }
  PaintNew();
  const QImage grown = picture_;
  PaintTraces();
  // Lines begin at other points, so single pixels at the joints may differ, in shade more than in
  // place: less than one in a hundred of the pixels, none of them by much at a distance.
  int different = 0;
  for (int y = 0; y < picture_.height(); ++y) {
    for (int x = 0; x < picture_.width(); ++x) {
      if (qAbs(qGray(grown.pixel(x, y)) - qGray(picture_.pixel(x, y))) > 64) ++different;
    }
  }
  EXPECT_LT(different, PictureSize.width() * PictureSize.height() / 100 / 10);
}

TEST_F(ScopePainterTest, ATraceFarOffTheScreenStaysInsideItsFrame) {
  const QImage background = picture_;
  set_.Speed.Value = 1e30;
  set_.Sample(200);
  set_.Speed.Value = -1e30;
  set_.Sample(100);
  PaintNew();
  const QRect plate = painter_.Plate();
  for (int y = 0; y < picture_.height(); ++y) {
    for (int x = 0; x < picture_.width(); ++x) {
      if (plate.contains(x, y)) continue;
      ASSERT_EQ(picture_.pixel(x, y), background.pixel(x, y)) << x << "," << y;
    }
  }
  // Small arrows at the edge say that it goes on there: some, not one a point.
  const auto marked = [&](int y) {
    int count = 0;
    for (int x = 0; x < plate.width(); ++x) count += BlueAt(x, y);
    return count;
  };
  EXPECT_GT(marked(6), 30);
  EXPECT_LT(marked(6), plate.width() / 3);
  EXPECT_GT(marked(plate.height() - 8), 15);
}

// Two traces that swing from edge to edge with each point took more than a second.
TEST_F(ScopePainterTest, DenseTracesArePaintedInTime) {
  for (int i = 0; i < 401; ++i) {
    set_.Speed.Value = set_.Command.Value = i % 2 ? 1e9 : -1e9;
    set_.Sample(1);
  }
  constexpr QSize fullHd(1920, 1080);
  painter_.Layout(fullHd, 1.0, MakeScopeLabels(set_.Scope, nullptr));
  picture_ = QImage(fullHd, QImage::Format_RGB32);
  const std::clock_t start = std::clock();
  PaintTraces();
  EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC / 5);
  EXPECT_TRUE(BlueAt(X(1), Y(0)) || BlueAt(X(2), Y(0)) || BlueAt(X(3), Y(0)));
}

}  // namespace
}  // namespace torvane
