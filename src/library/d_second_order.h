#pragma once

#include "library/d_library_class.h"

namespace torvane {

/// Coefficients of 1 + C1 / z + C2 / z^2.
struct DPair {
  double C1;
  double C2;
};

/// The pair of z-plane roots that match s^2 + 2 zeta w s + w^2, w in rad/s, sampled every T
/// seconds:
///
///     C1 = -2 exp(-zeta w T) cos(w sqrt(1 - zeta^2) T), from zeta = 1 on with cosh and zeta^2 - 1
///     C2 = exp(-2 zeta w T)
DPair MatchedPair(double omega, double zeta, double period);

/// Layout and step that the sampled second-order blocks share:
///
///     y = b0 x + b1 x1 + b2 x2 - a1 y1 - a2 y2
class ZelDSecondOrder : public ZelDLibraryClass {
 public:
  double Step(double x) final;

 protected:
  /// `initial` is both past outputs; the past inputs are 0.
  ZelDSecondOrder(const ZelDController* clock, double initial)
      : ZelDLibraryClass(clock), y1_(initial), y2_(initial) {}

  void SetNumerator(double b0, double b1, double b2) {
    b0_ = b0;
    b1_ = b1;
    b2_ = b2;
  }

  void SetDenominator(DPair poles) { a_ = poles; }

 private:
  std::vector<double*> PastValues() final { return {&y1_, &y2_, &x1_, &x2_}; }

  double b0_ = 0.0;
  double b1_ = 0.0;
  double b2_ = 0.0;
  DPair a_{};
  double y1_;
  double y2_;
  double x1_ = 0.0;
  double x2_ = 0.0;
};

}  // namespace torvane
