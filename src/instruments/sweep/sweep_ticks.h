#pragma once

#include <array>
#include <span>

#include "core/sample_tape.h"

namespace torvane {

/// What a tick of a sweep at f Hz and time t is to the correlations: sine and cosine of 2 pi f t,
/// the signal's value, and f t.
struct SweepTick {
  double Sin = 0.0;
  double Cos = 0.0;
  double X = 0.0;
  double Cycles = 0.0;

  /// That of any tick, without the signal.
  static SweepTick At(double f, double t);
};

/// Sums over the ticks of products of sine, cosine, one and the signal.
struct SweepSums {
  double N = 0.0;
  double S = 0.0, C = 0.0, X = 0.0;
  double SS = 0.0, SC = 0.0, CC = 0.0;
  double XS = 0.0, XC = 0.0;
  double T = 0.0, TT = 0.0, TS = 0.0, TC = 0.0, TX = 0.0;  ///< T in cycles from the first tick

  void Add(const SweepTick& tick, double firstCycles);
  /// What does not depend on the signal, of the sums over other ticks.
  void AddTicks(const SweepSums& other);
};

/// Ticks that a tape has, the same for every signal.
///
/// Sine and cosine of the first are computed, and those of the others turned on from them as long
/// as the ticks are equally far apart: over a tape that is off by some 1e-14 beside the rounding of
/// 2 pi f t.
class SweepTicks {
 public:
  SweepTicks(double f, const SampleTape& tape, std::span<const int> rows);

  int Count() const { return count_; }
  double Cycles(int tick) const { return cycles_[static_cast<std::size_t>(tick)]; }
  /// One of them with the signal's value.
  SweepTick At(int tick, double x) const;
  /// What does not depend on the signal, of all but the last, which the next ones follow.
  SweepSums Shared(double firstCycles) const;
  /// Adds what depends on the signal, of all but the last; the values are those of the rows.
  void AddSignal(SweepSums& sums, std::span<const double> values, double firstCycles) const;

 private:
  static constexpr std::size_t Most = SampleTape::Most;

  int count_;
  std::array<double, Most> sin_{};
  std::array<double, Most> cos_{};
  std::array<double, Most> cycles_{};
};

}  // namespace torvane
