#include "library/friction.h"

#include <cmath>

#include "core/numeric.h"

namespace torvane {

ZelFricCalc::ZelFricCalc(const FrictionSettings& settings)
    : tC_(NonNegative(settings.TC, "ZelFricCalc, tC")),
      tS_(NonNegative(settings.TS, "ZelFricCalc, tS")),
      pS_(Positive(settings.PS, "ZelFricCalc, pS")) {}

double ZelFricCalc::Friction(double position, double velocity) {
  if (motion_ == Motion::Forwards) {
    if (velocity > 0.0) {
      anchor_ = position - pS_;
      return -tC_;
    }
    motion_ = Motion::Stuck;
    anchor_ = position - StickingTravel();
  } else if (motion_ == Motion::Backwards) {
    if (velocity < 0.0) {
      anchor_ = position + pS_;
      return tC_;
    }
    motion_ = Motion::Stuck;
    anchor_ = position + StickingTravel();
  }
  return StuckFriction(position);
}

double ZelFricCalc::StuckFriction(double position) {
  const double d = position - anchor_;
  if (d > pS_) {
    motion_ = Motion::Forwards;
    anchor_ = position - pS_;
    return -tC_;
  }
  if (d < -pS_) {
    motion_ = Motion::Backwards;
    anchor_ = position + pS_;
    return tC_;
  }
  const double edge = tS_ < tC_ ? tC_ : tS_;
  return -d * edge / pS_;
}

// How far from the anchor the spring gives the sliding torque.
double ZelFricCalc::StickingTravel() const {
  return tS_ > tC_ ? pS_ * tC_ / tS_ : pS_;
}

void ZelFricCalc::DropNonFinite() {
  if (std::isfinite(anchor_)) return;
  anchor_ = 0.0;
  motion_ = Motion::Stuck;
}

}  // namespace torvane
