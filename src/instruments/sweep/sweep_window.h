#pragma once

#include "instruments/sweep/sweep_sums.h"

namespace torvane {

class SweepTicks;

/// The ticks of a window under way, which all signals have in common. The last tick of a point
/// belongs to the period after it, so that a tick counts only once another one has followed.
class SweepWindow {
 public:
  /// Forgets its ticks, for a new point.
  void Reset() { *this = {}; }
  /// The last tick is the first one of a new window.
  void Next();

  void Add(const SweepTick& tick);
  void Add(const SweepTicks& ticks);

  /// Whether it has a tick, which the next one makes count.
  bool Begun() const { return begun_; }
  const SweepTick& Last() const { return last_; }
  /// f t of the first tick, which is one at these cycles when there is none yet.
  double FirstCycles(double cycles) const { return begun_ ? firstCycles_ : cycles; }
  /// Cycles from the first tick to the last.
  double Cycles() const { return last_.Cycles - firstCycles_; }

  /// Over the ticks that count.
  const TickSums& Sums() const { return sums_; }

 private:
  void Follow(const SweepTick& last, double firstCycles);

  TickSums sums_;
  bool begun_ = false;
  double firstCycles_ = 0.0;
  SweepTick last_;
};

}  // namespace torvane
