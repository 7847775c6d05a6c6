#include "instruments/sweep/sweep_ticks.h"

#include <cmath>

#include "core/angle.h"
#include "core/double_pair.h"
#include "instruments/sweep/sweep_window.h"
#include "instruments/sweep/turning_sine.h"

namespace torvane {

SweepTicks::SweepTicks(double f, const SampleTape& tape, std::span<const int> rows,
                       const SweepWindow& window)
    : count_(rows.size() - 1), firstCycles_(window.FirstCycles(f * tape.Time(rows.front()))) {
  double before = tape.Time(rows.front());
  double distance = 0.0;
  SineCosine turn;
  SineCosine now = SineCosine::Of(TwoPi * f * before);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const double t = tape.Time(rows[i]);
    if (i == 1) {
      distance = t - before;
      turn = SineCosine::Of(TwoPi * f * distance);
    }
    if (i > 0) {
      const bool even = std::abs(t - before - distance) <= TurningSine::SameDistance * distance;
      now = even ? now.TurnedBy(turn) : SineCosine::Of(TwoPi * f * t);
    }
    before = t;
    sin_[i] = now.Sin;
    cos_[i] = now.Cos;
    gone_[i] = f * t - firstCycles_;
  }
  last_ = {now.Sin, now.Cos, f * before};
}

TickSums SweepTicks::Sums() const {
  TickSums sums;
  for (std::size_t i = 0; i < count_; ++i) sums.Add({sin_[i], cos_[i]}, gone_[i]);
  return sums;
}

// Even and odd ticks by themselves: one instruction adds for both.
SignalSums SweepTicks::Sums(std::span<const double> values) const {
  DoublePair x{};
  DoublePair xs{};
  DoublePair xc{};
  DoublePair tx{};
  std::size_t i = 0;
  for (; i + 2 <= count_; i += 2) {
    const DoublePair value = DoublePairAt(&values[i]);
    x += value;
    xs += value * DoublePairAt(&sin_[i]);
    xc += value * DoublePairAt(&cos_[i]);
    tx += value * DoublePairAt(&gone_[i]);
  }
  SignalSums sums{x[0] + x[1], xs[0] + xs[1], xc[0] + xc[1], tx[0] + tx[1]};
  if (i < count_) sums.Add(values[i], {sin_[i], cos_[i]}, gone_[i]);
  return sums;
}

}  // namespace torvane
