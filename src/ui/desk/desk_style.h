#pragma once

#include <QProxyStyle>

namespace torvane {

/// The platform's style, in which what is switched on, and the frames of what can be switched, stay
/// visible on a dark ground too.
class DeskStyle : public QProxyStyle {
 public:
  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
};

}  // namespace torvane
