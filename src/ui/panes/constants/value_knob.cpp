#include "ui/panes/constants/value_knob.h"

#include <QMouseEvent>
#include <QWheelEvent>
#include <cstdlib>
#include <utility>

#include "core/constant.h"

namespace torvane {

namespace {

constexpr int TurnMilliseconds = 700;  // a wheel at rest for so long has ended its turn
constexpr int PixelsPerStep = 10;      // of a drag; fewer than that are an unsteady click

}  // namespace

ValueKnob::ValueKnob(QTableWidget& table, int valueColumn, ZelBenchTop& bench)
    : QObject(&table), table_(table), valueColumn_(valueColumn), bench_(bench) {
  table.viewport()->installEventFilter(this);
  table.viewport()->setMouseTracking(true);
  turnEnd_.setSingleShot(true);
  connect(&turnEnd_, &QTimer::timeout, this, [this] { bench_.History().EndGesture(); });
}

bool ValueKnob::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::Wheel:
      return TurnWheel(static_cast<const QWheelEvent&>(*event));
    case QEvent::MouseButtonPress:
      return Press(static_cast<const QMouseEvent&>(*event));
    case QEvent::MouseMove:
      return Move(static_cast<const QMouseEvent&>(*event));
    case QEvent::MouseButtonRelease:
      return Release(static_cast<const QMouseEvent&>(*event));
    default:
      return QObject::eventFilter(watched, event);
  }
}

bool ValueKnob::IsOnSelected(const QPoint& place) const {
  const int row = table_.currentRow();
  const QTableWidgetItem* value = row < 0 ? nullptr : table_.item(row, valueColumn_);
  return value && table_.itemAt(place) == value &&
         !table_.isPersistentEditorOpen(table_.model()->index(row, valueColumn_));
}

// Elsewhere the wheel scrolls.
bool ValueKnob::TurnWheel(const QWheelEvent& wheel) {
  if (!IsOnSelected(wheel.position().toPoint())) return false;
  if (!turnEnd_.isActive()) {
    turned_ = 0;
    bench_.History().BeginGesture();
  }
  turnEnd_.start(TurnMilliseconds);
  const bool fine = wheel.modifiers().testFlag(Qt::ShiftModifier);
  Turn(wheel.angleDelta().y(), QWheelEvent::DefaultDeltasPerStep, fine);
  return true;
}

// The table sees the click too: a second one on a value still edits it.
bool ValueKnob::Press(const QMouseEvent& mouse) {
  pressed_ = mouse.button() == Qt::LeftButton && IsOnSelected(mouse.pos());
  dragged_ = mouse.pos();
  return false;
}

// A release that a box took, which opened meanwhile, shows in the buttons.
bool ValueKnob::Move(const QMouseEvent& mouse) {
  if (!mouse.buttons().testFlag(Qt::LeftButton)) EndDrag();
  if (!pressed_) {
    const bool over = mouse.buttons() == Qt::NoButton && IsOnSelected(mouse.pos());
    table_.viewport()->setCursor(over ? Qt::SizeVerCursor : Qt::ArrowCursor);
    return false;
  }
  const QPoint way = mouse.pos() - dragged_;
  const int amount = way.x() - way.y();
  if (!dragging_) {
    if (std::abs(amount) < PixelsPerStep) return true;
    dragging_ = true;
    turned_ = 0;
    bench_.History().BeginGesture();
  }
  dragged_ = mouse.pos();
  Turn(amount, PixelsPerStep, mouse.modifiers().testFlag(Qt::ShiftModifier));
  return true;
}

bool ValueKnob::Release(const QMouseEvent& mouse) {
  return mouse.button() == Qt::LeftButton && EndDrag();
}

bool ValueKnob::EndDrag() {
  pressed_ = false;
  if (!std::exchange(dragging_, false)) return false;
  bench_.History().EndGesture();
  return true;
}

void ValueKnob::Turn(int amount, int perStep, bool fine) {
  const ConstantStep up = fine ? ConstantStep::DinkyNudgeUp : ConstantStep::NudgeUp;
  const ConstantStep down = fine ? ConstantStep::DinkyNudgeDown : ConstantStep::NudgeDown;
  Constant& constant = *bench_.Constants()[static_cast<std::size_t>(table_.currentRow())];
  turned_ += amount;
  for (; std::abs(turned_) >= perStep; turned_ -= turned_ > 0 ? perStep : -perStep) {
    constant.Step(turned_ > 0 ? up : down);
  }
}

}  // namespace torvane
