#pragma once

#include <QFontDatabase>
#include <QWidget>

namespace torvane {

/// Gives the widget a font whose figures are all equally wide, so that changing numbers do not
/// jump. Keeps the widget's size of text.
inline void UseFixedDigits(QWidget& widget) {
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setPointSizeF(widget.font().pointSizeF());
  widget.setFont(font);
}

}  // namespace torvane
