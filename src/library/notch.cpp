#include "library/notch.h"

#include "core/angle.h"
#include "library/forget.h"

namespace torvane {

Notch::Notch(double poleHz, double poleDamping, double zeroHz, double zeroDamping)
    : poleOmega_(2.0 * Pi * poleHz),
      zeroOmega_(2.0 * Pi * zeroHz),
      poleZeta_(poleDamping),
      zeroZeta_(zeroDamping) {
  ComputeCoefficients();
}

void Notch::FollowReset(ResetKind kind) {
  Forget(kind, {&u_});
  y_ = b0_ * u_ + first_;
}

void Notch::SetFrequency(double hz) {
  poleOmega_ = zeroOmega_ = 2.0 * Pi * hz;
  ComputeCoefficients();
}

void Notch::SetDamping(double damping) {
  poleZeta_ = damping;
  ComputeCoefficients();
}

void Notch::ComputeCoefficients() {
  const double ratio = zeroOmega_ == 0.0 ? 1.0 : poleOmega_ / zeroOmega_;
  b0_ = ratio * ratio;
  b1_ = 2.0 * zeroZeta_ * poleOmega_ * ratio;
  a2_ = poleOmega_ * poleOmega_;
  a1_ = 2.0 * poleZeta_ * poleOmega_;
}

}  // namespace torvane
