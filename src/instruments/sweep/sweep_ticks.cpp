#include "instruments/sweep/sweep_ticks.h"

#include <cmath>

#include "core/angle.h"
#include "instruments/sweep/turning_sine.h"

namespace torvane {

SweepTick SweepTick::At(double f, double t) {
  const auto [sine, cosine] = SineCosine::Of(TwoPi * f * t);
  return {sine, cosine, 0.0, f * t};
}

void SweepSums::Add(const SweepTick& tick, double firstCycles) {
  const double t = tick.Cycles - firstCycles;
  T += t;
  TT += t * t;
  TS += t * tick.Sin;
  TC += t * tick.Cos;
  TX += t * tick.X;
  N += 1.0;
  S += tick.Sin;
  C += tick.Cos;
  X += tick.X;
  SS += tick.Sin * tick.Sin;
  SC += tick.Sin * tick.Cos;
  CC += tick.Cos * tick.Cos;
  XS += tick.X * tick.Sin;
  XC += tick.X * tick.Cos;
}

void SweepSums::AddTicks(const SweepSums& other) {
  N += other.N;
  S += other.S;
  C += other.C;
  SS += other.SS;
  SC += other.SC;
  CC += other.CC;
  T += other.T;
  TT += other.TT;
  TS += other.TS;
  TC += other.TC;
}

SweepTicks::SweepTicks(double f, const SampleTape& tape, std::span<const int> rows)
    : count_(static_cast<int>(rows.size())) {
  double distance = 0.0;
  SineCosine turn;
  SineCosine now;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const double t = tape.Time(rows[i]);
    cycles_[i] = f * t;
    const double gone = i > 0 ? t - tape.Time(rows[i - 1]) : 0.0;
    if (i == 1) {
      distance = gone;
      turn = SineCosine::Of(TwoPi * f * distance);
    }
    const bool even = i > 0 && std::abs(gone - distance) <= TurningSine::SameDistance * distance;
    now = even ? now.TurnedBy(turn) : SineCosine::Of(TwoPi * f * t);
    sin_[i] = now.Sin;
    cos_[i] = now.Cos;
  }
}

SweepTick SweepTicks::At(int tick, double x) const {
  const auto i = static_cast<std::size_t>(tick);
  return {sin_[i], cos_[i], x, cycles_[i]};
}

SweepSums SweepTicks::Shared(double firstCycles) const {
  SweepSums sums;
  for (int i = 0; i + 1 < count_; ++i) sums.Add(At(i, 0.0), firstCycles);
  return sums;
}

// Even and odd ticks by themselves, side by side: an addition need not wait for the one before it,
// and one instruction adds for both.
void SweepTicks::AddSignal(SweepSums& sums, std::span<const double> values,
                           double firstCycles) const {
  constexpr std::size_t Lanes = 2;
  static_assert(Most % Lanes == 0);
  std::array<double, Lanes> x{};
  std::array<double, Lanes> xs{};
  std::array<double, Lanes> xc{};
  std::array<double, Lanes> tx{};
  const auto add = [&](std::size_t i, std::size_t lane) {
    const double value = values[i];
    x[lane] += value;
    xs[lane] += value * sin_[i];
    xc[lane] += value * cos_[i];
    tx[lane] += value * (cycles_[i] - firstCycles);
  };
  const std::size_t count = values.size() - 1;
  std::size_t i = 0;
  for (; i + Lanes <= count; i += Lanes) {
    for (std::size_t lane = 0; lane < Lanes; ++lane) add(i + lane, lane);
  }
  if (i < count) add(i, 0);
  for (std::size_t lane = 0; lane < Lanes; ++lane) {
    sums.X += x[lane];
    sums.XS += xs[lane];
    sums.XC += xc[lane];
    sums.TX += tx[lane];
  }
}

}  // namespace torvane
