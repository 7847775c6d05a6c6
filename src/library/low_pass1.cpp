#include "library/low_pass1.h"

#include "core/angle.h"
#include "library/forget.h"

namespace torvane {

void LowPass1::FollowReset(ResetKind kind) {
  Forget(kind, {&u_});
  y_ = state_;
}

void LowPass1::SetFrequency(double hz) {
  omega_ = 2.0 * Pi * hz;
}

}  // namespace torvane
