#pragma once

#include <array>
#include <span>
#include <vector>

#include "instruments/analyser/analyser_channel.h"
#include "instruments/sweep/limit_watch.h"
#include "instruments/sweep/sweep_ticks.h"
#include "instruments/sweep/sweep_window.h"

namespace torvane {

/// One signal of the swept-sine analyser: the sums of the point being measured and, for each slot,
/// the gain and phase of every point.
///
/// The signal is correlated with sine and cosine at f, and the correlations are solved with those
/// of sine, cosine and constant among each other over the same ticks, which are the window's:
///   x = A sin + B cos + D, gain 20 log10 sqrt(A^2 + B^2), phase atan2(B, A).
/// Over whole periods of ticks this is A = 2/N sum x sin, B = 2/N sum x cos. It reads a sine at f
/// on a constant exactly whether or not the period is a whole number of ticks.
class ZelSweptDSAChannel final : public AnalyserChannel {
 public:
  /// Room for `capacity` points a slot.
  ZelSweptDSAChannel(const Variable& variable, int capacity);

  using AnalyserChannel::Signal;

  /// Forgets slot 0's points, for a new sweep.
  void ClearPoints();
  void ResetSums();
  /// Takes the signal's present value at a tick, which the window is given after it.
  void Accumulate(const SweepWindow& window);
  /// The same of ticks that a tape has, with the values of the signal that it has, without the
  /// display multiplier.
  void Accumulate(const SweepWindow& window, const SweepTicks& ticks,
                  std::span<const double> values);
  /// The window is whole and goes into the point's average; a new one follows at once.
  void NextWindow(const SweepWindow& window);
  /// Stores the point's gain and phase in slot 0; an index beyond the capacity is reported and
  /// gives false.
  bool Measure(int index, const SweepWindow& window);

  double Gain(int slot, int index) override;
  double Phase(int slot, int index) override;
  bool StoreData(int slot);

  /// The gain of a point that there is.
  double GainOf(int slot, int index) const {
    return slots_[static_cast<std::size_t>(slot)].Gains[static_cast<std::size_t>(index)];
  }
  /// The part of the amplitude at a point that comes from a signal which was still moving from one
  /// level to another: a ramp of D a period would read D / pi.
  double Unsettled(int slot, int index) const;
  /// Points of slot 0 at which the signal stood at a limit.
  int PointsAtLimit() const { return pointsAtLimit_; }

 private:
  struct Slot {
    std::vector<double> Gains;
    std::vector<double> Phases;
    std::vector<double> Unsettled;
  };
  /// What the point's windows have given so far.
  struct Average {
    int Windows = 0;
    double Sin = 0.0;
    double Cos = 0.0;
    double Power = 0.0;  ///< sum of the squared amplitudes
    double Unsettled = 0.0;
  };
  /// Amplitudes of the sine and the cosine.
  struct Phasor {
    double Sin = 0.0;
    double Cos = 0.0;
  };

  void AddLast(const SweepWindow& window, SignalSums& sums) const;
  Phasor Solve(const SweepWindow& window) const;
  Phasor AddWindow(const SweepWindow& window);
  double UnsettledShare(const SweepWindow& window, const Phasor& phasor) const;
  bool Readable(int slot, int index, const char* message) const;

  std::size_t capacity_;
  SignalSums sums_;    ///< without the display multiplier, and so is what follows
  double last_ = 0.0;  ///< at the window's last tick
  LimitWatch limit_;
  int pointsAtLimit_ = 0;
  Average average_;
  std::array<Slot, SlotCount> slots_;
};

}  // namespace torvane
