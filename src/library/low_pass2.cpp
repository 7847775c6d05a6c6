#include "library/low_pass2.h"

#include "core/angle.h"
#include "core/constant.h"
#include "library/forget.h"

namespace torvane {

LowPass2::LowPass2(double frequencyHz, double damping)
    : frequency_(frequencyHz), damping_(damping) {
  ComputeCoefficients();
}

void LowPass2::FollowLinks() {
  if (frequencyLink_ && frequencyLink_->TakeChanged()) SetFrequency(frequencyLink_->Value());
  if (dampingLink_ && dampingLink_->TakeChanged()) SetDamping(dampingLink_->Value());
}

void LowPass2::FollowReset(ResetKind kind) {
  Forget(kind, {&u_});
  y_ = position_;
}

void LowPass2::SetFrequency(double hz) {
  frequency_ = hz;
  ComputeCoefficients();
}

void LowPass2::SetDamping(double damping) {
  damping_ = damping;
  ComputeCoefficients();
}

void LowPass2::ComputeCoefficients() {
  twoZetaOmega_ = 2.0 * damping_ * frequency_ * 2.0 * Pi;
  const double omega = frequency_ * 2.0 * Pi;
  omegaSquared_ = omega * omega;
}

}  // namespace torvane
