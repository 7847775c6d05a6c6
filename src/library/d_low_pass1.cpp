#include "library/d_low_pass1.h"

#include <cmath>

#include "core/angle.h"

namespace torvane {

ZelDLowPass1::ZelDLowPass1(const ZelDController* clock, double frequencyHz, double initial)
    : ZelDLibraryClass(clock), y1_(initial) {
  SetFrequency(frequencyHz);
}

double ZelDLowPass1::Step(double x) {
  y1_ = b0_ * x - a1_ * y1_;
  return y1_;
}

void ZelDLowPass1::ComputeCoefficients() {
  a1_ = -std::exp(-omega_ * Period());
  b0_ = 1.0 + a1_;
}

void ZelDLowPass1::SetFrequency(double hz) {
  omega_ = TwoPi * hz;
  ComputeCoefficients();
}

}  // namespace torvane
