#include "ui/widgets/wheel_guard.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QEvent>
#include <QSlider>

namespace torvane {

namespace {

class WheelGuard : public QObject {
 public:
  using QObject::QObject;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
};

// What surrounds the control gets the wheel in its place.
bool WheelGuard::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::Wheel) return false;
  const auto* control = qobject_cast<QWidget*>(watched);
  if (!qobject_cast<QComboBox*>(watched) && !qobject_cast<QSlider*>(watched)) return false;
  if (control->hasFocus()) return false;
  event->ignore();
  return true;
}

}  // namespace

void GuardAgainstWheel(QObject& owner) {
  QCoreApplication::instance()->installEventFilter(new WheelGuard(&owner));
}

}  // namespace torvane
