#include "core/solver.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "core/bench.h"
#include "core/combine.h"
#include "core/instrument.h"
#include "core/messages.h"
#include "core/model.h"
#include "core/text.h"

namespace torvane {

ZelSolver::ZelSolver(ZelBenchTop& bench, double h, ZelModel& model, int maxOrder)
    : bench_(bench),
      h_(h),
      model_(model),
      maxOrder_(maxOrder),
      states_(static_cast<std::size_t>(maxOrder)),
      numbers_(static_cast<std::size_t>(maxOrder)),
      startValues_(static_cast<std::size_t>(maxOrder)),
      slopeSum_(static_cast<std::size_t>(maxOrder)),
      watch_(bench) {
  bench.AttachSolver(*this);
}

void ZelSolver::AddStateVar(StateVariable& state) {
  if (maxOrder_ - 1 < count_) {
    FatalError("Exceeded max order of solver; increase max order and recompile");
    return;
  }
  state.Value = state.InitialValue;
  const auto slot = static_cast<std::size_t>(count_);
  startValues_[slot] = state.InitialValue;
  slopeSum_[slot] = 0.0;
  states_[slot] = &state;
  numbers_[slot] = &state.Numbers;
  ++count_;
}

void ZelSolver::Reset() {
  for (std::size_t i = 0; i < static_cast<std::size_t>(count_); ++i) {
    states_[i]->Value = states_[i]->InitialValue;
    startValues_[i] = states_[i]->InitialValue;
    slopeSum_[i] = 0.0;
  }
  nearOverflow_ = false;
}

void ZelSolver::RunUntil(double tEnd) {
  ClearOverflowFlag();
  while (bench_.Time() < tEnd) {
    const double t = bench_.Time();
    if (nearOverflow_) {
      WatchedStep(t);
    } else {
      Integrate(t, [this](double at) { model_.Evaluate(at); });
      EndStep(t);
    }
  }
}

ZelSolver::Ahead ZelSolver::RunAhead(double tEnd, int /*mostSamples*/, Instrument* only) {
  const double stop = only ? only->NextTime() : bench_.NextStopTime();
  RunUntil(std::min(stop, tEnd));
  return {stop, 0};
}

void ZelSolver::WatchedStep(double t) {
  watch_.Begin();
  Integrate(t, [this](double at) {
    watch_.States();
    model_.Derivatives(at);
    watch_.Equations();
    for (TimeDriven* object : bench_.TimeDrivenObjects()) {
      object->AtTime(at);
      watch_.Object(*object);
    }
  });
  watch_.States();
  EndStep(t);
}

template <class Evaluate>
void ZelSolver::Integrate(double t, Evaluate evaluate) {
  State* const* const states = numbers_.data();
  double* const start = startValues_.data();
  double* const sum = slopeSum_.data();
  const auto count = static_cast<std::size_t>(count_);
  const double h = h_;
  const double half = 0.5 * h;
  const Combine combine(h);

  for (std::size_t i = 0; i < count; ++i) start[i] = states[i]->Value;

  // Each slope is read once into a local: the compiler cannot know that the arrays and the states
  // do not overlap.
  evaluate(t);
  for (std::size_t i = 0; i < count; ++i) {
    const double slope = states[i]->Derivative;
    sum[i] = slope;
    states[i]->Value = start[i] + half * slope;
  }
  evaluate(t + half);
  for (std::size_t i = 0; i < count; ++i) {
    const double slope = states[i]->Derivative;
    sum[i] += 2.0 * slope;
    states[i]->Value = start[i] + half * slope;
  }
  evaluate(t + half);
  for (std::size_t i = 0; i < count; ++i) {
    const double slope = states[i]->Derivative;
    sum[i] += 2.0 * slope;
    states[i]->Value = start[i] + h * slope;
  }
  evaluate(t + h);

  for (std::size_t i = 0; i < count; ++i) {
    State& state = *states[i];
    sum[i] += state.Derivative;
    state.Value = combine(start[i], sum[i]);
    state.TakePending();
  }
}

void ZelSolver::EndStep(double t) {
  // The start of the step on purpose: instruments that sample it see when the step began.
  if (Variable* const timeVar = bench_.TimeVar()) timeVar->Value = t;
  bench_.AdvanceTime(h_);
  const long double size = Magnitude();
  if (OverflowRaised() || !std::isfinite(size)) ThrowOverflow(t);
  nearOverflow_ = size > Huge;
}

// Extended precision has room for a sum that a double has not.
long double ZelSolver::Magnitude() const {
  long double sum = 0.0L;
  for (const StateVariable* state : States()) sum += std::abs(state->Value);
  return sum;
}

void ZelSolver::ThrowOverflow(double t) {
  ClearOverflowFlag();
  std::string found = watch_.TakeFound();
  if (found.empty()) found = FindOverflowAfterwards(bench_, t + h_);
  throw SolverOverflow("floating-point overflow in " + found + " at time " +
                       FormatShortest(bench_.Time()) + " s");
}

}  // namespace torvane
