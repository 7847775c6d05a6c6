#include "ui/widgets/swatch.h"

#include <QPainter>
#include <QPixmap>

namespace torvane {

QIcon Swatch(const std::optional<QColor>& colour) {
  QPixmap square(14, 14);
  square.fill(Qt::transparent);
  if (colour) {
    QPainter painter(&square);
    painter.setPen(QColor(0x8a9299));  // stands out from light and dark
    painter.setBrush(*colour);
    painter.drawRect(1, 1, 11, 11);
  }
  return QIcon(square);
}

}  // namespace torvane
