#include "ui/widgets/double_click.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QEvent>
#include <utility>

namespace torvane {

DoubleClick::DoubleClick(QComboBox& list, std::function<void()> action)
    : QObject(&list), list_(list), action_(std::move(action)) {
  list.installEventFilter(this);
  list.view()->viewport()->installEventFilter(this);
}

bool DoubleClick::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::MouseButtonDblClick) return QObject::eventFilter(watched, event);
  list_.hidePopup();
  action_();
  return true;
}

}  // namespace torvane
