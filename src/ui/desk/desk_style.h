#pragma once

#include <QProxyStyle>

namespace torvane {

/// The platform's style, in which what is switched on, the frames of what can be switched and the
/// buttons of panels and of a window in the background stay visible on a dark ground too. The names
/// of a table's rows are as flat as its cells.
class DeskStyle : public QProxyStyle {
 public:
  /// The key Alt alone goes to the menu bar.
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* data) const override;
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                          QPainter* painter, const QWidget* widget) const override;
};

}  // namespace torvane
