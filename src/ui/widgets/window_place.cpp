#include "ui/widgets/window_place.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStyle>
#include <QWidget>
#include <algorithm>

namespace torvane {

namespace {

constexpr int Gap = 4;  // between windows that make room for each other, pixels

}  // namespace

QSize FramedSize(const QWidget& window) {
  const QStyle& style = *window.style();
  const int edge = style.pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
  return window.size() + QSize(2 * edge, 2 * edge + style.pixelMetric(QStyle::PM_TitleBarHeight));
}

QPoint OnDisplay(const QPoint& place, const QWidget& window) {
  const QScreen* display = QGuiApplication::screenAt(place);
  const QRect room = (display ? display : window.screen())->availableGeometry();
  const QSize size = FramedSize(window);
  return {std::max(room.left(), std::min(place.x(), room.right() + 1 - size.width())),
          std::max(room.top(), std::min(place.y(), room.bottom() + 1 - size.height()))};
}

QPoint ClearOf(const QWidget& other, const QPoint& place, const QWidget& window) {
  const QSize size = FramedSize(window);
  const QRect taken(other.pos(), FramedSize(other));
  for (const QPoint& at : {place, QPoint(place.x(), taken.top() - size.height() - Gap),
                           QPoint(place.x(), taken.bottom() + 1 + Gap),
                           QPoint(taken.left() - size.width() - Gap, place.y()),
                           QPoint(taken.right() + 1 + Gap, place.y())}) {
    const QPoint free = OnDisplay(at, window);
    if (!QRect(free, size).intersects(taken)) return free;
  }
  return place;
}

}  // namespace torvane
