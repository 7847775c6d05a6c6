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
  pending_ = false;
  average_ = {};
  limit_ = {};
}

// The slope of what is left of the signal without its sine and its mean. Of n periods of a ramp the
// sine has taken 6 / (pi n)^2 of the slope.
double ZelSweptDSAChannel::UnsettledShare(const Phasor& phasor) const {
  const SweepSums& s = sums_;
  const double amplitude = std::hypot(phasor.Sin, phasor.Cos);
  const double periods = last_.Cycles - firstCycles_;
  const double left = 1.0 - 6.0 / (Pi * Pi * periods * periods);
  const double spread = s.TT - s.T * s.T / s.N;
  if (!(amplitude > 0.0 && left > 0.2 && spread > 0.0)) return 0.0;
  const auto withTime = [&](double product, double sum) { return product - s.T * sum / s.N; };
  const double slope =
      (withTime(s.TX, s.X) - phasor.Sin * withTime(s.TS, s.S) - phasor.Cos * withTime(s.TC, s.C)) /
      (spread * left);
  return std::abs(slope) / (Pi * amplitude);
}

ZelSweptDSAChannel::Phasor ZelSweptDSAChannel::AddWindow() {
  const Phasor phasor = Solve();
  ++average_.Windows;
  average_.Sin += phasor.Sin;
  average_.Cos += phasor.Cos;
  average_.Power += phasor.Sin * phasor.Sin + phasor.Cos * phasor.Cos;
  average_.Unsettled = std::max(average_.Unsettled, UnsettledShare(phasor));
  return phasor;
}

// The last tick belongs to the window that begins.
void ZelSweptDSAChannel::NextWindow() {
  AddWindow();
  sums_ = {};
  firstCycles_ = last_.Cycles;
}

void ZelSweptDSAChannel::Accumulate(const SweepTick& tick) {
  if (pending_) sums_.Add(last_, firstCycles_);
  last_ = tick;
  last_.X = Signal().DisplayValue();
  if (!pending_) firstCycles_ = last_.Cycles;
  limit_.See(last_.X);
  pending_ = true;
}

void ZelSweptDSAChannel::Accumulate(const SweepTicks& ticks, std::span<const double> values,
                                    const SweepSums& shared) {
  firstCycles_ = FirstCycles(ticks);
  if (pending_) sums_.Add(last_, firstCycles_);
  sums_.AddTicks(shared);
  ticks.AddSignal(sums_, values, firstCycles_);
  for (const double value : values) limit_.See(value);
  last_ = ticks.At(ticks.Count() - 1, values.back());
  pending_ = true;
}

ZelSweptDSAChannel::Phasor ZelSweptDSAChannel::Solve() const {
  SweepSums sums = sums_;
  if (sums.N == 0.0 && pending_) sums.Add(last_, firstCycles_);
  if (sums.N == 0.0) return {};
  // Taking the means off each product removes the constant from the equations.
  const double ss = sums.SS - sums.S * sums.S / sums.N;
  const double sc = sums.SC - sums.S * sums.C / sums.N;
  const double cc = sums.CC - sums.C * sums.C / sums.N;
  const double xs = sums.XS - sums.X * sums.S / sums.N;
  const double xc = sums.XC - sums.X * sums.C / sums.N;
  const double determinant = ss * cc - sc * sc;
  if (!(determinant > LeastDeterminant * sums.N * sums.N)) {
    return {2.0 * sums.XS / sums.N, 2.0 * sums.XC / sums.N};
  }
  return {(xs * cc - xc * sc) / determinant, (xc * ss - xs * sc) / determinant};
}

bool ZelSweptDSAChannel::Measure(int index) {
  if (index < 0 || static_cast<std::size_t>(index) >= capacity_) {
    Error("Index overrun in ZelSweptDSAChannel :: Measure");
    return false;
  }
  Phasor phasor = AddWindow();
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
