#include "library/d_notch.h"

#include "core/angle.h"

namespace torvane {

ZelDNotch::ZelDNotch(const ZelDController* clock, double frequencyHz, double damping,
                     double initial)
    : ZelDNotch(clock, frequencyHz, damping, frequencyHz, 0.0, initial) {}

ZelDNotch::ZelDNotch(const ZelDController* clock, double poleHz, double poleDamping, double zeroHz,
                     double zeroDamping, double initial)
    : ZelDSecondOrder(clock, initial),
      poleOmega_(TwoPi * poleHz),
      zeroOmega_(TwoPi * zeroHz),
      poleZeta_(poleDamping),
      zeroZeta_(zeroDamping) {
  ComputeCoefficients();
}

void ZelDNotch::ComputeCoefficients() {
  const DPair poles = MatchedPair(poleOmega_, poleZeta_, Period());
  const DPair zeros = MatchedPair(zeroOmega_, zeroZeta_, Period());
  const double zerosAtDc = 1.0 + zeros.C1 + zeros.C2;
  const double gain = zerosAtDc == 0.0 ? 1.0 : (1.0 + poles.C1 + poles.C2) / zerosAtDc;
  SetDenominator(poles);
  SetNumerator(gain, gain * zeros.C1, gain * zeros.C2);
}

void ZelDNotch::SetFrequency(double hz) {
  poleOmega_ = zeroOmega_ = TwoPi * hz;
  ComputeCoefficients();
}

void ZelDNotch::SetZeroFrequency(double hz) {
  zeroOmega_ = TwoPi * hz;
  ComputeCoefficients();
}

void ZelDNotch::SetDamping(double damping) {
  poleZeta_ = damping;
  ComputeCoefficients();
}

}  // namespace torvane
