#include "ui/widgets/held_gestures.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QSlider>
#include <QSplitter>
#include <utility>

#include "core/undo.h"

namespace torvane {

namespace {

bool CanBeHeld(QObject* control) {
  const auto* button = qobject_cast<QAbstractButton*>(control);
  return (button && button->autoRepeat()) || qobject_cast<QSlider*>(control) ||
         qobject_cast<QSplitterHandle*>(control) || qobject_cast<QHeaderView*>(control->parent());
}

bool IsRepeated(const QEvent* event) {
  return static_cast<const QKeyEvent*>(event)->isAutoRepeat();
}

}  // namespace

HeldGestures::HeldGestures(QObject* parent, std::function<ZelUndo*()> history)
    : QObject(parent), history_(std::move(history)) {
  QCoreApplication::instance()->installEventFilter(this);
}

// The release may come to another control: a button is disabled at the limit while it is held.
bool HeldGestures::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
      if (CanBeHeld(watched)) Begin();
      break;
    case QEvent::KeyPress:
      if (CanBeHeld(watched) && !IsRepeated(event)) Begin();
      break;
    case QEvent::MouseButtonRelease:
      End();
      break;
    case QEvent::KeyRelease:
      if (!IsRepeated(event)) End();
      break;
    default:
      break;
  }
  return false;
}

void HeldGestures::Begin() {
  ZelUndo* history = history_();
  if (!history) return;
  history->BeginGesture();
  ++gestures_;
  held_ = true;
}

// A button acts once more on its release, which it has not received yet.
void HeldGestures::End() {
  if (!std::exchange(held_, false)) return;
  const auto end = [this, gesture = gestures_] {
    ZelUndo* history = history_();
    if (history && gesture == gestures_) history->EndGesture();
  };
  QMetaObject::invokeMethod(this, end, Qt::QueuedConnection);
}

}  // namespace torvane
