#pragma once

#include <QKeySequence>
#include <QString>
#include <functional>

class QAbstractButton;
class QComboBox;
class QMenu;

namespace torvane {

/// A sub-menu with the entries of a list; an item does what choosing it in the list does.
void AddListMenu(QMenu& menu, const QString& title, const char* name, QComboBox& list);

/// An item that presses a button: the one that is found when it is chosen.
void AddPressItem(QMenu& menu, const QString& text, const char* name, const QKeySequence& key,
                  const std::function<QAbstractButton*()>& button);

}  // namespace torvane
