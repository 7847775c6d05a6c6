#pragma once

#include <QAction>
#include <QComboBox>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QMenu>
#include <QScreen>
#include <QScrollBar>
#include <QTableWidget>
#include <map>
#include <stdexcept>

namespace torvane::test {

/// The frame in the workspace, or the window itself.
inline QWidget& WindowOf(QWidget& widget) {
  QWidget* at = &widget;
  while (!at->isWindow() && !qobject_cast<QMdiSubWindow*>(at)) at = at->parentWidget();
  return *at;
}

/// As it stands on the display.
inline QImage PictureOf(const QWidget& widget) {
  const QWidget& window = *widget.window();
  const QPoint at = widget.mapTo(&window, QPoint());
  return window.screen()
      ->grabWindow(window.winId(), at.x(), at.y(), widget.width(), widget.height())
      .toImage();
}

/// Whether no visible control is cut off.
inline bool IsWhole(const QWidget& window) {
  for (const QWidget* control : window.findChildren<QWidget*>()) {
    const auto* around = control->parentWidget();
    if (!control->isVisible() || control->isWindow() || around->inherits("QAbstractItemView") ||
        around->inherits("QMdiSubWindow")) {
      continue;
    }
    const bool wide =
        control->minimumWidth() > 0 || control->width() >= control->minimumSizeHint().width();
    if (!wide || !around->rect().contains(control->geometry())) return false;
  }
  return true;
}

inline QStringList Texts(const QTableWidget& table, const QString& part) {
  QStringList lines;
  for (int row = 0; part == "rows" && row < table.rowCount(); ++row) {
    lines << table.verticalHeaderItem(row)->text();
  }
  if (part == "rows") return lines;
  for (int row = part == "header" ? -1 : 0; row < (part == "header" ? 0 : table.rowCount());
       ++row) {
    QStringList cells;
    for (int column = 0; column < table.columnCount(); ++column) {
      const auto* cell = row < 0 ? table.horizontalHeaderItem(column) : table.item(row, column);
      if (!table.isColumnHidden(column)) cells << (cell ? cell->text() : QString());
    }
    lines << cells.join(u',');
  }
  return lines;
}

/// A table's cell by line and column, or the value of the line with that name.
inline QTableWidgetItem& Cell(const QTableWidget& table, const QString& place) {
  const QStringList numbers = place.split(u',');
  const auto named = table.findItems(place, Qt::MatchExactly);
  QTableWidgetItem* item = numbers.size() == 2 ? table.item(numbers[0].toInt(), numbers[1].toInt())
                           : named.isEmpty()   ? nullptr
                                               : table.item(named.front()->row(), 1);
  if (!item) throw std::runtime_error("no cell " + place.toStdString());
  return *item;
}

/// Items that are on with a "*" before them, disabled ones in brackets.
inline QStringList Texts(QMenu& menu) {
  emit menu.aboutToShow();
  QStringList items;
  for (const QAction* item : menu.actions()) {
    const QString text = (item->isChecked() ? u"*"_qs : QString()) + item->text().remove(u'&');
    items << (item->isSeparator() ? u"-"_qs : item->isEnabled() ? text : u'(' + text + u')');
  }
  return items;
}

/// Menus in which a letter brings two commands.
inline QStringList Ambiguous(const QWidget& window) {
  QStringList found;
  for (QMenu* menu : window.findChildren<QMenu*>()) {
    emit menu->aboutToShow();
    std::map<QString, int> uses;
    for (const QAction* item : menu->actions()) {
      const QString key = QKeySequence::mnemonic(item->text()).toString();
      if (!key.isEmpty() && ++uses[key] > 1) found << menu->objectName() + u' ' + key;
    }
  }
  return found;
}

inline QStringList Texts(QObject& object, const QString& part) {
  if (auto* table = qobject_cast<QTableWidget*>(&object)) return Texts(*table, part);
  if (auto* menu = qobject_cast<QMenu*>(&object)) return Texts(*menu);
  QStringList items;
  const auto* lines = qobject_cast<QListWidget*>(&object);
  for (int i = 0; lines && i < lines->count(); ++i) items << lines->item(i)->text();
  const auto* list = qobject_cast<QComboBox*>(&object);
  for (int i = 0; list && i < list->count(); ++i) items << list->itemText(i);
  return items;
}

/// Neither cut off nor covered by what stands beside it.
inline bool Fits(const QWidget& widget) {
  const QWidget& parent = *widget.parentWidget();
  for (const auto* other : parent.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
    const bool covers = other->isVisible() && other->geometry().intersects(widget.geometry());
    if (covers && other != &widget) return false;
  }
  const auto* table = qobject_cast<const QTableWidget*>(&widget);
  for (int column = 0; table && column < table->columnCount(); ++column) {
    const int wanted = static_cast<const QAbstractItemView*>(table)->sizeHintForColumn(column);
    if (!table->isColumnHidden(column) && table->columnWidth(column) < wanted) return false;
  }
  return parent.rect().contains(widget.geometry()) &&
         widget.height() >= widget.heightForWidth(widget.width()) &&
         (!table || table->horizontalScrollBar()->maximum() == 0);
}

}  // namespace torvane::test
