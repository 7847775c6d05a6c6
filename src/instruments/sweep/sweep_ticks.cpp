#include "instruments/sweep/sweep_ticks.h"

#include <cmath>

#include "core/angle.h"

namespace torvane {

namespace {

constexpr double SameDistance = 1e-6;  // of two ticks, as a part of it

}  // namespace

SweepTick SweepTick::At(double f, double t) {
  const double angle = TwoPi * f * t;
  return {std::sin(angle), std::cos(angle), 0.0, f * t};
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
  double turnSin = 0.0;
  double turnCos = 1.0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const double t = tape.Time(rows[i]);
    cycles_[i] = f * t;
    const double gone = i > 0 ? t - tape.Time(rows[i - 1]) : 0.0;
    if (i == 1) {
      distance = gone;
      turnSin = std::sin(TwoPi * f * distance);
      turnCos = std::cos(TwoPi * f * distance);
    }
    if (i > 0 && std::abs(gone - distance) <= SameDistance * distance) {
      sin_[i] = sin_[i - 1] * turnCos + cos_[i - 1] * turnSin;
      cos_[i] = cos_[i - 1] * turnCos - sin_[i - 1] * turnSin;
    } else {
      sin_[i] = std::sin(TwoPi * f * t);
      cos_[i] = std::cos(TwoPi * f * t);
    }
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

// Even and odd ticks by themselves: an addition need not wait for the one before it.
void SweepTicks::AddSignal(SweepSums& sums, std::span<const double> values,
                           double firstCycles) const {
  struct Lane {
    double X = 0.0, XS = 0.0, XC = 0.0, TX = 0.0;
  };
  std::array<Lane, 2> lanes;
  for (std::size_t i = 0; i + 1 < values.size(); ++i) {
    Lane& lane = lanes[i % 2];
    const double x = values[i];
    lane.X += x;
    lane.XS += x * sin_[i];
    lane.XC += x * cos_[i];
    lane.TX += x * (cycles_[i] - firstCycles);
  }
  for (const Lane& lane : lanes) {
    sums.X += lane.X;
    sums.XS += lane.XS;
    sums.XC += lane.XC;
    sums.TX += lane.TX;
  }
}

}  // namespace torvane
