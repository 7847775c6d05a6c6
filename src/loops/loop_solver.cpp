#include "loops/loop_solver.h"

#include <cmath>

#include "core/bench.h"
#include "core/overflow.h"
#include "core/text.h"
#include "loops/number_faults.h"
#include "loops/own_loop.h"

namespace torvane::loops {

LoopSolver::LoopSolver(ZelBenchTop& bench, double h, OwnLoop& loop, LoopMachine& machine,
                       int maxOrder)
    : ZelSolver(bench, h, loop, maxOrder),
      loop_(loop),
      machine_(machine),
      start_(machine.StateCount()),
      sum_(machine.StateCount()) {}

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
  // Whatever is not an ordinary step's end is EndStep's to judge.
  while (Step(t) <= Huge && t + h_ < tEnd && !NumberFaultRaised()) t += h_;
  machine_.LeaveStates();
  bench_.SetTime(t);
  EndStep(t);
}

namespace {

// The numbers of a stage lie apart, which the compiler cannot see: they are of one model.
void Begin(std::size_t count, const double* __restrict__ slopes, double* __restrict__ start,
           double stretch, double* __restrict__ sum, double* __restrict__ values) {
  for (std::size_t i = 0; i < count; ++i) {
    start[i] = values[i];
    sum[i] = slopes[i];
    values[i] = start[i] + stretch * slopes[i];
  }
}

void GoOn(std::size_t count, const double* __restrict__ slopes, const double* __restrict__ start,
          double stretch, double* __restrict__ sum, double* __restrict__ values) {
  for (std::size_t i = 0; i < count; ++i) {
    sum[i] += 2.0 * slopes[i];
    values[i] = start[i] + stretch * slopes[i];
  }
}

}  // namespace

// Returns how large the states and the sources have become.
long double LoopSolver::Step(double t) {
  const std::size_t count = start_.size();
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
  return CombineStates() + loop_.EndStep(t + h_);
}

long double LoopSolver::CombineStates() {
  double* const values = machine_.Values();
  const double* const slopes = machine_.Slopes();
  long double size = 0.0L;
  for (std::size_t i = 0; i < start_.size(); ++i) {
    const long double combined = Combine(start_[i], sum_[i] + slopes[i], h_);
    values[i] = static_cast<double>(combined);
    size += std::abs(combined);
  }
  if (!machine_.TakePending()) [[likely]] {
    return size;
  }
  for (std::size_t i = 0; i < start_.size(); ++i) {
    State& state = machine_.StateOf(i);
    if (!state.PendingSet) continue;
    state.TakePending();
    values[i] = state.Value;
    size += std::abs(static_cast<long double>(values[i]));
  }
  return size;
}

}  // namespace torvane::loops
