#pragma once

#include <QRect>
#include <string>

class QWidget;

namespace torvane {

class Constant;

/// Gives a constant what the user typed for it; false after a report when it is refused. A number
/// that it holds to a limit is noted below the area of the control where it was typed.
bool EnterConstant(Constant& constant, const std::string& text, QWidget& control,
                   const QRect& area);

}  // namespace torvane
