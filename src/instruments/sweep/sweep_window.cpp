#include "instruments/sweep/sweep_window.h"

#include "core/angle.h"
#include "instruments/sweep/sweep_ticks.h"
#include "instruments/sweep/turning_sine.h"

namespace torvane {

SweepTick SweepTick::At(double f, double t) {
  const auto [sine, cosine] = SineCosine::Of(TwoPi * f * t);
  return {sine, cosine, f * t};
}

void TickSums::Add(const SweepTick& tick, double cyclesGone) {
  N += 1.0;
  S += tick.Sin;
  C += tick.Cos;
  SS += tick.Sin * tick.Sin;
  SC += tick.Sin * tick.Cos;
  CC += tick.Cos * tick.Cos;
  T += cyclesGone;
  TT += cyclesGone * cyclesGone;
  TS += cyclesGone * tick.Sin;
  TC += cyclesGone * tick.Cos;
}

void TickSums::Add(const TickSums& other) {
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

void SweepWindow::Next() {
  sums_ = {};
  firstCycles_ = last_.Cycles;
}

// The last one counts now.
void SweepWindow::Follow(const SweepTick& last, double firstCycles) {
  if (begun_) sums_.Add(last_, Cycles());
  firstCycles_ = firstCycles;
  last_ = last;
  begun_ = true;
}

void SweepWindow::Add(const SweepTick& tick) {
  Follow(tick, FirstCycles(tick.Cycles));
}

void SweepWindow::Add(const SweepTicks& ticks) {
  Follow(ticks.Last(), ticks.FirstCycles());
  sums_.Add(ticks.Sums());
}

}  // namespace torvane
