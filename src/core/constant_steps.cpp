// The steps by which the adjust buttons move a constant.

#include "core/constant.h"
#include "core/scale_steps.h"

namespace torvane {

namespace {

/// A pair of buttons: the next value of its ladder either way, and the share of the limit to which
/// it leaves zero, which is on no ladder.
struct StepSize {
  double (*Higher)(double);
  double (*Lower)(double);
  double ShareOfLimit;
};

// About 100 %, 20 % and 4 % a step.
constexpr StepSize Coarse{NextHighest125, NextLowest125, 0.1};
constexpr StepSize Nudge{[](double x) { return NextHighestThisArray(x, CoarseLadder()); },
                         [](double x) { return NextLowestThisArray(x, CoarseLadder()); }, 0.01};
constexpr StepSize DinkyNudge{[](double x) { return NextHighestThisArray(x, FineLadder()); },
                              [](double x) { return NextLowestThisArray(x, FineLadder()); }, 0.001};

const StepSize& SizeOf(ConstantStep step) {
  switch (step) {
    case ConstantStep::Down:
    case ConstantStep::Up:
      return Coarse;
    case ConstantStep::NudgeDown:
    case ConstantStep::NudgeUp:
      return Nudge;
    case ConstantStep::DinkyNudgeDown:
    case ConstantStep::DinkyNudgeUp:
      break;
  }
  return DinkyNudge;
}

}  // namespace

// The ladders step magnitudes, so a negative value goes up by a step to the lower magnitude.
void Constant::Step(ConstantStep step) {
  const bool up = step >= ConstantStep::DinkyNudgeUp;
  const StepSize& size = SizeOf(step);
  if (IsList()) {
    const bool toEnd = step == ConstantStep::Up || step == ConstantStep::Down;
    const double end = up ? upper_ : lower_;
    Set(toEnd ? end : value_ + (up ? 1.0 : -1.0));
  } else if (value_ == 0.0) {
    Set(size.ShareOfLimit * (up ? upper_ : lower_));
  } else {
    Set(up == (value_ > 0.0) ? size.Higher(value_) : size.Lower(value_));
  }
}

void Constant::ChangeSign() {
  if (!IsList()) Set(-value_);
}

void Constant::SetToZero() {
  Set(0.0);
}

}  // namespace torvane
