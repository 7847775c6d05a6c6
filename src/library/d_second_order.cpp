#include "library/d_second_order.h"

#include <cmath>

namespace torvane {

DPair MatchedPair(double omega, double zeta, double period) {
  const double decay = zeta * omega * period;
  const double discriminant = 1.0 - zeta * zeta;
  const double c2 = std::exp(-2.0 * zeta * omega * period);
  if (discriminant < 0.0) {
    // exp(-decay) cosh(spread), written as the sum of the two real roots: the cosh alone overflows
    // for a fast, heavily damped pair on a slow clock.
    const double spread = omega * std::sqrt(-discriminant) * period;
    return {-(std::exp(spread - decay) + std::exp(-spread - decay)), c2};
  }
  return {-2.0 * std::exp(-decay) * std::cos(omega * std::sqrt(discriminant) * period), c2};
}

double ZelDSecondOrder::Step(double x) {
  const double y = b0_ * x + b1_ * x1_ + b2_ * x2_ - a_.C1 * y1_ - a_.C2 * y2_;
  y2_ = y1_;
  y1_ = y;
  x2_ = x1_;
  x1_ = x;
  return y;
}

}  // namespace torvane
