#pragma once

#include <array>
#include <vector>

#include "instruments/analyser_channel.h"

namespace torvane {

/// One signal of the swept-sine analyser: the sums of the point being measured and, for each slot,
/// the gain and phase of every point.
///
/// The signal is correlated with sine and cosine at f and the result divided by the correlations of
/// sine, cosine and constant with each other over the same ticks. So a sine at f on a constant
/// reads its exact amplitude and phase whether or not its period is a whole number of ticks.
class ZelSweptDSAChannel final : public AnalyserChannel {
 public:
  /// Room for `capacity` points a slot.
  ZelSweptDSAChannel(const Variable& variable, int capacity);

  void ResetSums();
  /// Adds the signal's present value. The last tick of a point begins the next period, so a value
  /// counts only once another has followed it.
  void Accumulate(double f, double t);
  /// Stores the point's gain and phase in slot 0.
  void Measure(int index);
  /// Makes slot 0's first points readable, `count` of them.
  void SetCount(int count) { slots_[0].Count = count; }

  double Gain(int slot, int index) override;
  double Phase(int slot, int index) override;
  bool StoreData(int slot);

 private:
  struct Slot {
    int Count = 0;
    std::vector<double> Gains;
    std::vector<double> Phases;
  };
  /// Sums over the ticks of products of sine, cosine, one and the signal.
  struct Sums {
    double Count = 0.0;
    double S = 0.0, C = 0.0, SS = 0.0, SC = 0.0, CC = 0.0;
    double X = 0.0, XS = 0.0, XC = 0.0;
  };

  bool Readable(int slot, int index, const char* message) const;

  int capacity_;
  Sums sums_;
  bool pending_ = false;
  double pendingSin_ = 0.0, pendingCos_ = 0.0, pendingX_ = 0.0;
  std::array<Slot, SlotCount> slots_;
};

}  // namespace torvane
