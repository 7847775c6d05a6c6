#pragma once

#include <QPoint>
#include <QSize>

class QWidget;

namespace torvane {

/// A window's size with its frame and room to spare, also before it has been shown: a window does
/// not know its frame before, and a main window that fills the display has none.
QSize FramedSize(const QWidget& window);

/// The place moved as far as is needed for a window to stand wholly on a display: on the one where
/// the place is, or else on its own. The display may have become smaller, or be another one.
QPoint OnDisplay(const QPoint& place, const QWidget& window);

/// Where a window covers as little as it can of another: none of it at the place itself, above,
/// below or beside the other or in a corner of the display, wherever there is room.
QPoint ClearOf(const QWidget& other, const QPoint& place, const QWidget& window);

}  // namespace torvane
