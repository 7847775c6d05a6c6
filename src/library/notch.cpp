#include "library/notch.h"

#include "core/angle.h"
#include "core/bench.h"
#include "core/messages.h"
#include "library/forget.h"

namespace torvane {

ZelNotch::ZelNotch(ZelBenchTop& bench, double frequencyHz, double damping)
    : ZelNotch(bench, frequencyHz, damping, frequencyHz, 0.0) {}

ZelNotch::ZelNotch(ZelBenchTop& bench, double poleHz, double poleDamping, double zeroHz,
                   double zeroDamping) try
    : poleOmega_(2.0 * Pi * poleHz),
      zeroOmega_(2.0 * Pi * zeroHz),
      poleZeta_(poleDamping),
      zeroZeta_(zeroDamping),
      first_(bench, "Notch #1", "Null", 0.0, {}, Visibility::Internal),
      second_(bench, "Notch #2", "Null", 0.0, {}, Visibility::Internal) {
  ComputeCoefficients();
  bench.AddTimeDriven(*this);
} catch (...) {
  Error("Fault in ZelNotch :: ZelNotch");
}

void ZelNotch::Reset(ResetKind kind) {
  Forget(kind, {&u_});
  y_ = b0_ * u_ + first_.Value;
}

void ZelNotch::SetFrequency(double hz) {
  poleOmega_ = zeroOmega_ = 2.0 * Pi * hz;
  ComputeCoefficients();
}

void ZelNotch::SetDamping(double damping) {
  poleZeta_ = damping;
  ComputeCoefficients();
}

void ZelNotch::ComputeCoefficients() {
  const double ratio = zeroOmega_ == 0.0 ? 1.0 : poleOmega_ / zeroOmega_;
  b0_ = ratio * ratio;
  b1_ = 2.0 * zeroZeta_ * poleOmega_ * ratio;
  a2_ = poleOmega_ * poleOmega_;
  a1_ = 2.0 * poleZeta_ * poleOmega_;
}

}  // namespace torvane
