#include "ui/widgets/cell_delegate.h"

#include <QAbstractItemView>
#include <QKeyEvent>

namespace torvane {

CellDelegate::CellDelegate(QAbstractItemView& table) : QStyledItemDelegate(&table) {}

bool CellDelegate::eventFilter(QObject* watched, QEvent* event) {
  if (!IsEnter(*event)) return QStyledItemDelegate::eventFilter(watched, event);
  Settle(*static_cast<QWidget*>(watched));
  return true;
}

void CellDelegate::Settle(QWidget& editor) {
  emit commitData(&editor);
  emit closeEditor(&editor);
}

bool IsEnter(const QEvent& event) {
  if (event.type() != QEvent::KeyPress) return false;
  const int key = static_cast<const QKeyEvent&>(event).key();
  return key == Qt::Key_Return || key == Qt::Key_Enter;
}

}  // namespace torvane
