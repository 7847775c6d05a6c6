#pragma once

#include <QString>
#include <QWidget>

namespace torvane::test {

/// A widget by its name within its window, that of an instrument within the main window's:
/// "TZelControlPanelF/SBRun", "TZelControlPanelF/TZelScopeF/BVertAdd". One without a name is told
/// by its class, namesakes by a number: "TZelControlPanelF/TZelMeterF*1".
QString AddressOf(const QWidget& widget);

/// Makes a gesture as the window system would, so that boxes, menus and what has the focus get what
/// is theirs. False when the widget is not to be seen or the gesture not known. Places are in
/// thousandths of the widget's size, or an item of a menu or table in brackets; "~" is the home:
///
///   click ADDRESS 500,500; double ADDRESS[2,1]; right ADDRESS 100,900; click MENU[3]
///   drag ADDRESS 500,500 100,900
///   wheel ADDRESS 500,500 -120
///   key Ctrl+Z; text 2.5k
///   drop FILE; size 1280,800; signal 15
bool Perform(const QString& gesture);

}  // namespace torvane::test
