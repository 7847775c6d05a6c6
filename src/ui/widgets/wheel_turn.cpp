#include "ui/widgets/wheel_turn.h"

#include <QWheelEvent>

namespace torvane {

namespace {

constexpr int RestMilliseconds = 700;  // that end a turn

}  // namespace

WheelTurn::WheelTurn(QObject* parent) : QObject(parent) {
  rest_.setSingleShot(true);
  rest_.setInterval(RestMilliseconds);
  connect(&rest_, &QTimer::timeout, this, &WheelTurn::Ended);
}

int WheelTurn::StepsOf(const QWheelEvent& event) {
  if (!rest_.isActive()) {
    turned_ = 0;
    emit Begun();
  }
  rest_.start();
  turned_ += event.angleDelta().y();
  const int steps = turned_ / QWheelEvent::DefaultDeltasPerStep;
  turned_ -= steps * QWheelEvent::DefaultDeltasPerStep;
  return steps;
}

void WheelTurn::End() {
  if (!rest_.isActive()) return;
  rest_.stop();
  emit Ended();
}

}  // namespace torvane
