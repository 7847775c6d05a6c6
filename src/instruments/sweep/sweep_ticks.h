#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "core/sample_tape.h"
#include "instruments/sweep/sweep_sums.h"

namespace torvane {

class SweepWindow;

/// Ticks that a tape has, which follow those of a window under way or are its first.
///
/// Sine and cosine of the first are computed, and those of the others turned on from them as long
/// as the ticks are equally far apart: over a tape that is off by some 1e-14 beside the rounding of
/// 2 pi f t.
class SweepTicks {
 public:
  SweepTicks(double f, const SampleTape& tape, std::span<const int> rows,
             const SweepWindow& window);

  /// f t of the window's first tick.
  double FirstCycles() const { return firstCycles_; }
  const SweepTick& Last() const { return last_; }

  /// Over all but the last, which the next ones follow.
  TickSums Sums() const;
  /// The same with a signal's values at all of them.
  SignalSums Sums(std::span<const double> values) const;

 private:
  static constexpr std::size_t Most = SampleTape::Most;

  std::size_t count_;  ///< all but the last
  double firstCycles_;
  SweepTick last_;
  std::array<double, Most> sin_{};
  std::array<double, Most> cos_{};
  std::array<double, Most> gone_{};  ///< cycles since the window's first tick
};

}  // namespace torvane
