#include "instruments/sweep/turning_sine.h"

#include <cmath>

#include "core/angle.h"

namespace torvane {

namespace {

constexpr int Turns = 31;

}  // namespace

SineCosine SineCosine::Of(double angle) {
  return {std::sin(angle), std::cos(angle)};
}

// The turn is kept where the distance is as before: a tick that comes a step late costs a sine
// only.
void TurningSine::Compute(double gone) {
  now_ = SineCosine::Of(TwoPi * f_ * time_ + phase_);
  left_ = Turns;
  if (gone > shortest_ && gone < longest_) return;
  shortest_ = gone * (1.0 - SameDistance);
  longest_ = gone * (1.0 + SameDistance);
  turn_ = SineCosine::Of(TwoPi * f_ * gone);
}

}  // namespace torvane
