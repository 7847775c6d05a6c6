#include "ui/desk/desk_style.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <QStyleOption>

namespace torvane {
namespace {

int WhitePixels(const QImage& picture) {
  int white = 0;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) white += qGray(picture.pixel(x, y)) > 230 ? 1 : 0;
  }
  return white;
}

TEST(DeskStyleTest, ATitleOnADarkGroundIsWrittenOnce) {
  const DeskStyle style;
  QStyleOptionTitleBar bar;
  bar.rect = {0, 0, 300, 30};
  bar.text = "Waveform Generator";
  bar.titleBarFlags = Qt::Window | Qt::WindowTitleHint;
  bar.subControls = QStyle::SC_TitleBarLabel;
  bar.palette = QPalette(QColor(40, 44, 46));
  ASSERT_EQ(bar.palette.color(QPalette::Text), Qt::white);
  QImage alone(bar.rect.size(), QImage::Format_RGB32);
  alone.fill(Qt::black);
  QPainter writer(&alone);
  writer.setPen(Qt::white);
  writer.drawText(bar.rect, Qt::AlignCenter, bar.text);
  for (const int state : {0, int(QStyle::State_Active)}) {
    QImage title(bar.rect.size(), QImage::Format_RGB32);
    title.fill(Qt::black);
    QPainter painter(&title);
    bar.titleBarState = state;
    style.drawComplexControl(QStyle::CC_TitleBar, &bar, &painter, nullptr);
    EXPECT_GT(WhitePixels(title), 0) << state;
    EXPECT_LE(WhitePixels(title), WhitePixels(alone) * 5 / 4) << state;
  }
}

}  // namespace
}  // namespace torvane
