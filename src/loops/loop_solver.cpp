#include "loops/loop_solver.h"

#include <array>
#include <cmath>

#include "core/bench.h"
#include "core/combine.h"
#include "core/number_faults.h"
#include "core/overflow.h"
#include "core/text.h"
#include "loops/own_loop.h"

namespace torvane::loops {

namespace {

constexpr std::size_t MostUnrolled = 16;  // states

}  // namespace

LoopSolver::LoopSolver(ZelBenchTop& bench, double h, OwnLoop& loop, LoopMachine& machine,
                       int maxOrder)
    : ZelSolver(bench, h, loop, maxOrder),
      loop_(loop),
      machine_(machine),
      start_(machine.StateCount()),
      sum_(machine.StateCount()),
      steps_(StepsFor(machine.StateCount(), std::make_index_sequence<MostUnrolled + 1>())) {}

// Of a few states the sums of a stage are written out, which spares a quarter of a small loop's
// instructions; 0 stands for any number of them.
template <std::size_t... Counts>
LoopSolver::StepsOf LoopSolver::StepsFor(std::size_t states,
                                         std::index_sequence<Counts...> /*known*/) {
  static constexpr std::array<StepsOf, sizeof...(Counts)> steps{&LoopSolver::Steps<Counts>...};
  return steps.at(states < steps.size() ? states : 0);
}

void LoopSolver::RunUntil(double tEnd) {
  while (bench_.Time() < tEnd) {
    if (NearOverflow()) [[unlikely]] {
      ClearNumberFaults();
      WatchedStep(bench_.Time());
    } else {
      Run(tEnd);
    }
    if (NumberFaultRaised() || machine_.Doubtful()) [[unlikely]] {
      CheckNumbers();
    }
  }
}

// An expression may go by way of infinity; a signal may not.
void LoopSolver::CheckNumbers() const {
  const auto found = machine_.FindNotFinite();
  if (found) throw SolverOverflow(*found + " at time " + FormatShortest(bench_.Time()) + " s");
}

void LoopSolver::Run(double tEnd) {
  loop_.BeginRun();
  ClearNumberFaults();
  machine_.TakeStates();
  double t = bench_.Time();
  // What may come to no number without a flag is looked at step by step.
  if (machine_.Doubtful()) tEnd = t;
  t = (this->*steps_)(t, tEnd);
  machine_.LeaveStates();
  bench_.SetTime(t);
  EndStep(t);
}

namespace {

// The numbers of a stage lie apart, which the compiler cannot see: they are of one model.
[[gnu::always_inline]] inline void Begin(std::size_t count, const double* __restrict__ slopes,
                                         double* __restrict__ start, double stretch,
                                         double* __restrict__ sum, double* __restrict__ values) {
  for (std::size_t i = 0; i < count; ++i) {
    start[i] = values[i];
    sum[i] = slopes[i];
    values[i] = start[i] + stretch * slopes[i];
  }
}

[[gnu::always_inline]] inline void GoOn(std::size_t count, const double* __restrict__ slopes,
                                        const double* __restrict__ start, double stretch,
                                        double* __restrict__ sum, double* __restrict__ values) {
  for (std::size_t i = 0; i < count; ++i) {
    sum[i] += 2.0 * slopes[i];
    values[i] = start[i] + stretch * slopes[i];
  }
}

}  // namespace

// From the one at t to the last before tEnd, whose time it returns, or to one that may not be
// ordinary, whose end is EndStep's to judge.
template <std::size_t Count>
double LoopSolver::Steps(double t, double tEnd) {
  while (Step<Count>(t) <= Huge && t + h_ < tEnd && !NumberFaultRaised()) t += h_;
  return t;
}

// Returns how large the states and the sources have become.
template <std::size_t Count>
[[gnu::always_inline]] inline long double LoopSolver::Step(double t) {
  const std::size_t count = Count > 0 ? Count : start_.size();
  const double half = 0.5 * h_;
  double* const values = machine_.Values();
  const double* const slopes = machine_.Slopes();

  loop_.BeginStep(t);
  machine_.Evaluate(t);
  Begin(count, slopes, start_.data(), half, sum_.data(), values);
  machine_.Evaluate(t + half);
  GoOn(count, slopes, start_.data(), half, sum_.data(), values);
  machine_.Evaluate(t + half);
  GoOn(count, slopes, start_.data(), h_, sum_.data(), values);
  machine_.Evaluate(t + h_);
  return CombineStates<Count>() + loop_.EndStep(t + h_);
}

template <std::size_t Count>
long double LoopSolver::CombineStates() {
  const std::size_t count = Count > 0 ? Count : start_.size();
  double* const values = machine_.Values();
  const double* const slopes = machine_.Slopes();
  const double* const start = start_.data();
  const double* const sum = sum_.data();
  const Combine combine(h_);
  long double size = 0.0L;
  for (std::size_t i = 0; i < count; ++i) {
    const long double combined = combine.Extended(start[i], sum[i] + slopes[i]);
    values[i] = static_cast<double>(combined);
    size += std::abs(combined);
  }
  return machine_.TakePending() ? TakePending(size) : size;
}

// Adds what states take from outside to how large they are.
long double LoopSolver::TakePending(long double size) {
  for (std::size_t i = 0; i < start_.size(); ++i) {
    State& state = machine_.StateOf(i);
    if (!state.PendingSet) continue;
    state.TakePending();
    machine_.Values()[i] = state.Value;
    size += std::abs(static_cast<long double>(state.Value));
  }
  return size;
}

}  // namespace torvane::loops
