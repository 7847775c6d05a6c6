#include "library/d_low_pass2.h"

#include "core/angle.h"

namespace torvane {

ZelDLowPass2::ZelDLowPass2(const ZelDController* clock, double frequencyHz, double damping,
                           double initial)
    : ZelDSecondOrder(clock, initial), omega_(TwoPi * frequencyHz), zeta_(damping) {
  ComputeCoefficients();
}

void ZelDLowPass2::ComputeCoefficients() {
  const DPair poles = MatchedPair(omega_, zeta_, Period());
  SetDenominator(poles);
  SetNumerator(1.0 + poles.C1 + poles.C2, 0.0, 0.0);
}

void ZelDLowPass2::SetFrequency(double hz) {
  omega_ = TwoPi * hz;
  ComputeCoefficients();
}

void ZelDLowPass2::SetDamping(double damping) {
  zeta_ = damping;
  ComputeCoefficients();
}

}  // namespace torvane
