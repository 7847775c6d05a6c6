#pragma once

#include "core/time_driven.h"

namespace torvane {

/// Friction parameters as a user states them.
struct FrictionSettings {
  double TC = 0.0;  ///< Coulomb (sliding) torque, 0 or above
  double TS = 0.0;  ///< static (breakaway) torque, 0 or above
  double PS = 1.0;  ///< travel of the static region, position units, above 0
};

/// Coulomb friction with a static region that behaves as a stiff spring of limited travel:
///
///     sliding:  torque = -TC sign(velocity)
///     stuck:    torque = -max(TS, TC) d / PS, d the displacement from the anchor, |d| <= PS
///
/// A body that stops sticks with the torque it had while sliding, and one that is pushed past the
/// static region breaks away to the sliding torque.
class ZelFricCalc {
 public:
  /// A travel that is not positive is reported and becomes 1e-10, a negative torque 0.
  explicit ZelFricCalc(const FrictionSettings& settings);

  /// Other parameters from now on; what sticks stays where it stuck. None out of its range.
  void SetSettings(const FrictionSettings& settings) {
    tC_ = settings.TC;
    tS_ = settings.TS;
    pS_ = settings.PS;
  }

  /// The friction torque at this position and velocity; it opposes motion, so it is negative while
  /// sliding forwards. Moves the anchor and the motion state along.
  double Friction(double position, double velocity);

  /// There is no friction: it is 0 whatever moves.
  bool None() const { return tC_ == 0.0 && tS_ == 0.0; }

  /// Forgets where it stuck: all of it, or only what an overflow has left.
  void Reset(ResetKind kind);

 private:
  enum class Motion { Backwards = -1, Stuck = 0, Forwards = 1 };

  double StuckFriction(double position);
  double StickingTravel() const;

  double tC_;
  double tS_;
  double pS_;
  double anchor_ = 0.0;  // where the spring of the static region is relaxed
  Motion motion_ = Motion::Stuck;
};

inline double ZelFricCalc::Friction(double position, double velocity) {
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

inline double ZelFricCalc::StuckFriction(double position) {
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
inline double ZelFricCalc::StickingTravel() const {
  return tS_ > tC_ ? pS_ * tC_ / tS_ : pS_;
}

}  // namespace torvane
