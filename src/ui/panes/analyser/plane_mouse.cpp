#include "ui/panes/analyser/plane_mouse.h"

#include "ui/widgets/mouse_steps.h"

namespace torvane {

namespace {

constexpr QPointF WholeNichols(90.0, 20.0);  // a division of it, degrees and dB

}  // namespace

void PlaneMouse::Press(const QPointF& at) {
  held_ = true;
  moved_ = false;
  from_ = at;
  centre_ = painter_.Axes().Centre;
}

void PlaneMouse::MoveTo(const QPointF& at) {
  moved_ = moved_ || at != from_;
  if (!moved_) return;
  const PlaneAxes& axes = painter_.Axes();
  Show(axes.Scale, centre_ + axes.ValueAt(from_) - axes.ValueAt(at));
}

void PlaneMouse::Turn(const QPointF& at, int steps) {
  PlaneAxes axes = painter_.Axes();
  const QPointF there = axes.ValueAt(at);
  axes.Scale = {TurnedScale(axes.Scale.x(), steps), TurnedScale(axes.Scale.y(), steps)};
  Show(axes.Scale, axes.Centre + there - axes.ValueAt(at));
}

void PlaneMouse::ShowAll() {
  IsNyquist() ? analyser_.SetNyquist({}) : Show(WholeNichols, {});
}

void PlaneMouse::Show(const QPointF& scale, const QPointF& centre) {
  const QPointF at(SteppedTo(centre.x(), scale.x()), SteppedTo(centre.y(), scale.y()));
  if (IsNyquist()) {
    analyser_.SetNyquist({scale.x(), at.x(), at.y()});
    return;
  }
  analyser_.SetPhaseScale(scale.x());
  analyser_.SetPhaseOffset(0.0 - at.x());  // not -0
  analyser_.SetGainScale(scale.y());
  analyser_.SetGainOffset(0.0 - at.y());
}

}  // namespace torvane
