#include "instruments/sweep/limit_watch.h"

#include <algorithm>
#include <cstddef>

#include "core/double_pair.h"
#include "core/extremes.h"

namespace torvane {

namespace {

// Whether each of two values or more is another than the one after it.
bool AllMove(std::span<const double> values) {
  auto stand = DoublePair{} != DoublePair{};
  std::size_t i = 0;
  for (; i + 3 <= values.size(); i += 2) {
    stand |= DoublePairAt(&values[i]) == DoublePairAt(&values[i + 1]);
  }
  const bool lastStands = values[values.size() - 2] == values.back();
  return (stand[0] | stand[1]) == 0 && !lastStands;
}

}  // namespace

// Of values that move, all that counts are the extremes; the last may stand from now on.
void LimitWatch::See(std::span<const double> values) {
  const bool moves = values.size() > 1 && run_ > 0 && values.front() != last_ && AllMove(values);
  if (!moves) {
    for (const double value : values) See(value);
    return;
  }
  EndRun();
  const Extremes extremes = ExtremesOf(values.first(values.size() - 1));
  Take(greatest_, extremes.Greatest, 1, extremes.Greatest > greatest_.Value);
  Take(least_, extremes.Least, 1, extremes.Least < least_.Value);
  last_ = values.back();
  run_ = 1;
}

void LimitWatch::See(double value) {
  if (run_ > 0 && value == last_) {
    ++run_;
    return;
  }
  EndRun();
  last_ = value;
  run_ = 1;
}

bool LimitWatch::AtLimit() const {
  LimitWatch whole = *this;
  whole.EndRun();
  const bool moves = whole.greatest_.Value > whole.least_.Value;
  const auto far = [&](const Extreme& extreme) {
    return extreme.Longest > FarLonger * std::max(whole.between_, 1);
  };
  return moves && (far(whole.greatest_) || far(whole.least_));
}

// A run at what was an extreme until now lies between them.
void LimitWatch::Take(Extreme& extreme, double value, int run, bool beyond) {
  if (beyond) {
    between_ = std::max(between_, extreme.Longest);
    extreme = {value, run};
  } else if (value == extreme.Value) {
    extreme.Longest = std::max(extreme.Longest, run);
  }
}

void LimitWatch::EndRun() {
  if (run_ == 0) return;
  if (greatest_.Longest == 0) {
    greatest_ = least_ = {last_, run_};
    return;
  }
  if (last_ < greatest_.Value && last_ > least_.Value) {
    between_ = std::max(between_, run_);
    return;
  }
  Take(greatest_, last_, run_, last_ > greatest_.Value);
  Take(least_, last_, run_, last_ < least_.Value);
}

}  // namespace torvane
