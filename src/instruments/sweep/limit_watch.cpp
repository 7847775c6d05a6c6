#include "instruments/sweep/limit_watch.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "core/pair.h"

namespace torvane {

namespace {

struct Extremes {
  double Greatest;
  double Least;
};

// Of all but the last, which belongs to what comes. Nothing where one is like the one after it, and
// of few. The last pair may have one that the pair before it had.
std::optional<Extremes> ExtremesOfMoving(std::span<const double> values) {
  if (values.size() < 3) return std::nullopt;
  const std::size_t count = values.size() - 1;
  Pair greatest = PairAt(values.data());
  Pair least = greatest;
  auto stands = greatest == PairAt(&values[1]);
  const auto see = [&](std::size_t i) {
    const Pair pair = PairAt(&values[i]);
    greatest = pair > greatest ? pair : greatest;
    least = pair < least ? pair : least;
    stands |= pair == PairAt(&values[i + 1]);
  };
  for (std::size_t i = 2; i + 2 <= count; i += 2) see(i);
  see(count - 2);
  if ((stands[0] | stands[1]) != 0) return std::nullopt;
  return Extremes{std::max(greatest[0], greatest[1]), std::min(least[0], least[1])};
}

}  // namespace

// Of values that move, the extremes are all that counts.
void LimitWatch::See(std::span<const double> values) {
  const bool moves = run_ > 0 && values.front() != last_;
  const auto extremes = moves ? ExtremesOfMoving(values) : std::nullopt;
  if (!extremes) {
    for (const double value : values) See(value);
    return;
  }
  EndRun();
  Take(greatest_, extremes->Greatest, 1, extremes->Greatest > greatest_.Value);
  Take(least_, extremes->Least, 1, extremes->Least < least_.Value);
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
