#include "ui/widgets/wheel_guard.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QEvent>
#include <QSlider>

namespace torvane {

WheelGuard::WheelGuard(QObject* parent) : QObject(parent) {
  QCoreApplication::instance()->installEventFilter(this);
}

// What surrounds the control gets the wheel in its place.
bool WheelGuard::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::Wheel) return false;
  const auto* control = qobject_cast<QWidget*>(watched);
  if (!qobject_cast<QComboBox*>(watched) && !qobject_cast<QSlider*>(watched)) return false;
  if (control->hasFocus()) return false;
  event->ignore();
  return true;
}

}  // namespace torvane
