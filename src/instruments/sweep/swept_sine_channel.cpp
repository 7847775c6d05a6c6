#include "instruments/sweep/swept_sine_channel.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "core/angle.h"
#include "core/messages.h"
#include "instruments/analyser/response_reading.h"

namespace torvane {

namespace {

// The determinant of whole periods is N^2 / 4. Far below that the ticks cannot tell sine, cosine
// and constant apart: too few of them, or the frequency is a multiple of half the tick rate.
constexpr double LeastDeterminant = 1e-6;

}  // namespace

ZelSweptDSAChannel::ZelSweptDSAChannel(const Variable& variable, int capacity)
    : AnalyserChannel(variable), capacity_(static_cast<std::size_t>(capacity)) {
  slots_[0].Gains.reserve(capacity_);
  slots_[0].Phases.reserve(capacity_);
}

void ZelSweptDSAChannel::ClearPoints() {
  slots_[0].Gains.clear();
  slots_[0].Phases.clear();
  slots_[0].Unsettled.clear();
  pointsAtLimit_ = 0;
  Coherences(0).clear();
}

void ZelSweptDSAChannel::ResetSums() {
  sums_ = {};
  average_ = {};
  limit_ = {};
}

// The slope of what is left of the signal without its sine and its mean. Of n periods of a ramp the
// sine has taken 6 / (pi n)^2 of the slope.
double ZelSweptDSAChannel::UnsettledShare(const SweepWindow& window, const Phasor& phasor) const {
  const TickSums& s = window.Sums();
  const double amplitude = std::hypot(phasor.Sin, phasor.Cos);
  const double periods = window.Cycles();
  const double left = 1.0 - 6.0 / (Pi * Pi * periods * periods);
  const double spread = s.TT - s.T * s.T / s.N;
  if (!(amplitude > 0.0 && left > 0.2 && spread > 0.0)) return 0.0;
  const auto withTime = [&](double product, double sum) { return product - s.T * sum / s.N; };
  const double slope = (withTime(sums_.TX, sums_.X) - phasor.Sin * withTime(s.TS, s.S) -
                        phasor.Cos * withTime(s.TC, s.C)) /
                       (spread * left);
  return std::abs(slope) / (Pi * amplitude);
}

ZelSweptDSAChannel::Phasor ZelSweptDSAChannel::AddWindow(const SweepWindow& window) {
  Phasor phasor = Solve(window);
  average_.Unsettled = std::max(average_.Unsettled, UnsettledShare(window, phasor));
  phasor.Sin *= Signal().Multiplier();
  phasor.Cos *= Signal().Multiplier();
  ++average_.Windows;
  average_.Sin += phasor.Sin;
  average_.Cos += phasor.Cos;
  average_.Power += phasor.Sin * phasor.Sin + phasor.Cos * phasor.Cos;
  return phasor;
}

void ZelSweptDSAChannel::NextWindow(const SweepWindow& window) {
  AddWindow(window);
  sums_ = {};
}

void ZelSweptDSAChannel::AddLast(const SweepWindow& window, SignalSums& sums) const {
  if (window.Begun()) sums.Add(last_, window.Last(), window.Cycles());
}

void ZelSweptDSAChannel::Accumulate(const SweepWindow& window) {
  AddLast(window, sums_);
  last_ = Signal().Value;
  limit_.See(std::span(&last_, 1));
}

void ZelSweptDSAChannel::Accumulate(const SweepWindow& window, const SweepTicks& ticks,
                                    std::span<const double> values) {
  AddLast(window, sums_);
  sums_.Add(ticks.Sums(values));
  last_ = values.back();
  limit_.See(values);
}

// A window of one tick, which nothing follows, has that one.
ZelSweptDSAChannel::Phasor ZelSweptDSAChannel::Solve(const SweepWindow& window) const {
  TickSums ticks = window.Sums();
  SignalSums signal = sums_;
  if (ticks.N == 0.0) {
    if (!window.Begun()) return {};
    ticks.Add(window.Last(), window.Cycles());
    AddLast(window, signal);
  }
  // Taking the means off each product removes the constant from the equations.
  const double ss = ticks.SS - ticks.S * ticks.S / ticks.N;
  const double sc = ticks.SC - ticks.S * ticks.C / ticks.N;
  const double cc = ticks.CC - ticks.C * ticks.C / ticks.N;
  const double xs = signal.XS - signal.X * ticks.S / ticks.N;
  const double xc = signal.XC - signal.X * ticks.C / ticks.N;
  const double determinant = ss * cc - sc * sc;
  if (!(determinant > LeastDeterminant * ticks.N * ticks.N)) {
    return {2.0 * signal.XS / ticks.N, 2.0 * signal.XC / ticks.N};
  }
  return {(xs * cc - xc * sc) / determinant, (xc * ss - xs * sc) / determinant};
}

bool ZelSweptDSAChannel::Measure(int index, const SweepWindow& window) {
  if (index < 0 || static_cast<std::size_t>(index) >= capacity_) {
    Error("Index overrun in ZelSweptDSAChannel :: Measure");
    return false;
  }
  Phasor phasor = AddWindow(window);
  const double windows = average_.Windows;
  if (average_.Windows > 1) phasor = {average_.Sin / windows, average_.Cos / windows};
  const std::size_t point = static_cast<std::size_t>(index);
  Slot& slot = slots_[0];
  if (slot.Gains.size() <= point) {
    slot.Gains.resize(point + 1);
    slot.Phases.resize(point + 1);
    slot.Unsettled.resize(point + 1);
  }
  slot.Unsettled[point] = average_.Unsettled;
  if (limit_.AtLimit()) ++pointsAtLimit_;
  slot.Gains[point] = GainDb(std::sqrt(phasor.Sin * phasor.Sin + phasor.Cos * phasor.Cos));
  slot.Phases[point] = PhaseDeg(phasor.Sin, phasor.Cos);
  if (average_.Windows == 1) return true;
  // The excitation is the same sine in every window: what differs between them is not its doing.
  const double explained = phasor.Sin * phasor.Sin + phasor.Cos * phasor.Cos;
  const double power = average_.Power / windows;
  Coherences(0).resize(point);
  Coherences(0).push_back(static_cast<float>(power > 0.0 ? explained / power : 0.0));
  return true;
}

bool ZelSweptDSAChannel::Readable(int slot, int index, const char* message) const {
  const bool known = slot >= 0 && slot < SlotCount && index >= 0;
  if (known &&
      static_cast<std::size_t>(index) < slots_[static_cast<std::size_t>(slot)].Gains.size()) {
    return true;
  }
  Error(message);
  return false;
}

double ZelSweptDSAChannel::Gain(int slot, int index) {
  if (!Readable(slot, index, "ZelSweptDSAChannel:  Attempt to get gain outside range")) return 0.0;
  return slots_[static_cast<std::size_t>(slot)].Gains[static_cast<std::size_t>(index)];
}

double ZelSweptDSAChannel::Phase(int slot, int index) {
  if (!Readable(slot, index, "ZelSweptDSAChannel:  Attempt to get phase outside range")) return 0.0;
  return slots_[static_cast<std::size_t>(slot)].Phases[static_cast<std::size_t>(index)];
}

double ZelSweptDSAChannel::Unsettled(int slot, int index) const {
  return slots_[static_cast<std::size_t>(slot)].Unsettled[static_cast<std::size_t>(index)];
}

bool ZelSweptDSAChannel::StoreData(int slot) {
  if (slot < 1 || slot >= SlotCount) {
    Error("Fault in ZelSweptDSAChannel :: StoreData");
    return false;
  }
  slots_[static_cast<std::size_t>(slot)] = slots_[0];
  Coherences(slot) = Coherences(0);
  return true;
}

}  // namespace torvane
