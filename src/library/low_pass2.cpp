#include "library/low_pass2.h"

#include "core/angle.h"
#include "core/bench.h"
#include "core/constant.h"
#include "core/messages.h"
#include "library/forget.h"

namespace torvane {

ZelLowPass2::ZelLowPass2(ZelBenchTop& bench, double frequencyHz, double damping) try
    : frequency_(frequencyHz),
      damping_(damping),
      position_(bench, "LowPass2 #1", "Null", 0.0, {}, Visibility::Internal),
      rate_(bench, "LowPass2 #2", "Null", 0.0, {}, Visibility::Internal) {
  ComputeCoefficients();
  bench.AddTimeDriven(*this);
} catch (...) {
  Error("Fault in ZelLowPass2 :: ZelLowPass2");
}

void ZelLowPass2::FollowLinks() {
  if (frequencyLink_ && frequencyLink_->TakeChanged()) SetFrequency(frequencyLink_->Value());
  if (dampingLink_ && dampingLink_->TakeChanged()) SetDamping(dampingLink_->Value());
}

void ZelLowPass2::Reset(ResetKind kind) {
  Forget(kind, {&u_});
  y_ = position_.Value;
}

void ZelLowPass2::SetFrequency(double hz) {
  frequency_ = hz;
  ComputeCoefficients();
}

void ZelLowPass2::SetDamping(double damping) {
  damping_ = damping;
  ComputeCoefficients();
}

void ZelLowPass2::ComputeCoefficients() {
  twoZetaOmega_ = 2.0 * damping_ * frequency_ * 2.0 * Pi;
  const double omega = frequency_ * 2.0 * Pi;
  omegaSquared_ = omega * omega;
}

}  // namespace torvane
