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
void TurningSine::Compute(double f, double phase, double gone) {
  now_ = SineCosine::Of(TwoPi * f * time_ + phase);
  if (!(f == f_ && gone > shortest_ && gone < longest_)) {
    shortest_ = gone * (1.0 - SameDistance);
    longest_ = gone * (1.0 + SameDistance);
    turn_ = SineCosine::Of(TwoPi * f * gone);
  }
  f_ = f;
  phase_ = phase;
  left_ = Turns;
}

}  // namespace torvane
