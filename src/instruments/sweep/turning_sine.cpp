#include "instruments/sweep/turning_sine.h"

#include <cmath>

#include "core/angle.h"

namespace torvane {

namespace {

constexpr int Turns = 31;

}  // namespace

// The turn is kept where the distance is as before: a tick that comes a step late costs a sine
// only.
void TurningSine::Compute(double f, double phase, double gone) {
  const double angle = TwoPi * f * time_ + phase;
  sin_ = std::sin(angle);
  cos_ = std::cos(angle);
  if (!(f == f_ && gone > shortest_ && gone < longest_)) {
    shortest_ = gone * (1.0 - SameDistance);
    longest_ = gone * (1.0 + SameDistance);
    turnSin_ = std::sin(TwoPi * f * gone);
    turnCos_ = std::cos(TwoPi * f * gone);
  }
  f_ = f;
  phase_ = phase;
  left_ = Turns;
}

}  // namespace torvane
