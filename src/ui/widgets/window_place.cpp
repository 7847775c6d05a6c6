#include "ui/widgets/window_place.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStyle>
#include <QWidget>
#include <algorithm>
#include <limits>

namespace torvane {

namespace {

constexpr int PlaceGap = 4;  // between windows that make room for each other, pixels

QRect DisplayOf(const QPoint& place, const QWidget& window) {
  const QScreen* display = QGuiApplication::screenAt(place);
  return (display ? display : window.screen())->availableGeometry();
}

}  // namespace

QSize FramedSize(const QWidget& window) {
  const QStyle& style = *window.style();
  const int edge = style.pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
  return window.size() + QSize(2 * edge, 2 * edge + style.pixelMetric(QStyle::PM_TitleBarHeight));
}

QPoint OnDisplay(const QPoint& place, const QWidget& window) {
  const QRect room = DisplayOf(place, window);
  const QSize size = FramedSize(window);
  return {std::max(room.left(), std::min(place.x(), room.right() + 1 - size.width())),
          std::max(room.top(), std::min(place.y(), room.bottom() + 1 - size.height()))};
}

QPoint ClearOf(const QWidget& other, const QPoint& place, const QWidget& window) {
  const QSize size = FramedSize(window);
  const QRect taken(other.pos(), FramedSize(other));
  const QRect room = DisplayOf(place, window);
  QPoint best = place;
  int least = std::numeric_limits<int>::max();
  for (const QPoint& at : {place, QPoint(place.x(), taken.top() - size.height() - PlaceGap),
                           QPoint(place.x(), taken.bottom() + 1 + PlaceGap),
                           QPoint(taken.left() - size.width() - PlaceGap, place.y()),
                           QPoint(taken.right() + 1 + PlaceGap, place.y()), room.topRight(),
                           room.topLeft(), room.bottomRight(), room.bottomLeft()}) {
    const QPoint on = OnDisplay(at, window);
    const QRect covered = QRect(on, size).intersected(taken);
    const int area = covered.width() * covered.height();
    if (area >= least) continue;
    least = area;
    best = on;
  }
  return best;
}

}  // namespace torvane
