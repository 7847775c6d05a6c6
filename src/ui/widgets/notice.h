#pragma once

#include <QRect>
#include <QString>

class QWidget;

namespace torvane {

/// Says something short below a control, such as the limit that an entry was held to. The notice
/// takes neither focus nor clicks and goes by itself; another one takes its place.
void ShowNotice(QWidget& control, const QString& text);
/// The same, below an area of the control.
void ShowNotice(QWidget& control, const QRect& area, const QString& text);

}  // namespace torvane
