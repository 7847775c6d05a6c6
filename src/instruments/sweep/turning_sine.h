#pragma once

namespace torvane {

/// Sine and cosine of one angle.
struct SineCosine {
  double Sin = 0.0;
  double Cos = 1.0;

  static SineCosine Of(double angle);
  /// Of the sum of the angles.
  SineCosine TurnedBy(const SineCosine& by) const {
    return {Sin * by.Cos + Cos * by.Sin, Cos * by.Cos - Sin * by.Sin};
  }
};

/// sin(2 pi f t + phase) at ticks that are equally far apart, as sine and cosine that are turned on
/// from tick to tick.
///
/// They are computed anew every few ticks, and where phase or distance of ticks are others. In
/// between they are off by some 1e-14, beside the rounding of 2 pi f t. What comes out depends on
/// the ticks since the start alone, not on how a run is divided.
class TurningSine {
 public:
  /// By which part of it the distances of ticks may differ that count as equal.
  static constexpr double SameDistance = 1e-6;

  /// From now on of that frequency in Hz.
  void Start(double f) {
    f_ = f;
    left_ = 0;
    longest_ = 0.0;
  }
  /// From now on with that phase in radians.
  void SetPhase(double phase) {
    if (phase == phase_) return;
    phase_ = phase;
    left_ = 0;
  }

  /// The sine at the tick at t seconds.
  double At(double t) {
    const double gone = t - time_;
    time_ = t;
    if (left_ > 0 && gone > shortest_ && gone < longest_) [[likely]] {
      --left_;
      now_ = now_.TurnedBy(turn_);
    } else {
      Compute(gone);
    }
    return now_.Sin;
  }

 private:
  void Compute(double gone);

  int left_ = 0;  ///< ticks until they are computed anew
  double f_ = 0.0;
  double phase_ = 0.0;
  double time_ = 0.0;  ///< of the last tick
  SineCosine now_;
  double shortest_ = 0.0;  ///< the distance of ticks to which the turn belongs
  double longest_ = 0.0;
  SineCosine turn_;
};

}  // namespace torvane
