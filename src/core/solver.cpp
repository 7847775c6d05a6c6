#include "core/solver.h"

#include <cfenv>
#include <cmath>
#include <string>

#include "core/bench.h"
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
      startValues_(static_cast<std::size_t>(maxOrder)),
      slopeSum_(static_cast<std::size_t>(maxOrder)) {
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
  ++count_;
}

void ZelSolver::Reset() {
  for (std::size_t i = 0; i < static_cast<std::size_t>(count_); ++i) {
    states_[i]->Value = states_[i]->InitialValue;
    startValues_[i] = states_[i]->InitialValue;
    slopeSum_[i] = 0.0;
  }
}

void ZelSolver::RunUntil(double tEnd) {
  // An instrument's narrowing may have raised the flag since the last step. Testing it is cheap,
  // clearing it is not.
  if (std::fetestexcept(FE_OVERFLOW)) std::feclearexcept(FE_OVERFLOW);
  while (bench_.Time() < tEnd) RkStep(bench_.Time());
}

void ZelSolver::Evaluate(double t) {
  model_.Derivatives(t);
  bench_.UpdateTimeDriven(t);
}

void ZelSolver::RkStep(double t) {
  const auto count = static_cast<std::size_t>(count_);
  StateVariable* const* const states = states_.data();
  double* const start = startValues_.data();
  double* const sum = slopeSum_.data();
  const double h = h_;
  const double half = 0.5 * h;

  for (std::size_t i = 0; i < count; ++i) start[i] = states[i]->Value;

  Evaluate(t);
  for (std::size_t i = 0; i < count; ++i) {
    sum[i] = states[i]->Derivative;
    states[i]->Value = start[i] + half * states[i]->Derivative;
  }
  Evaluate(t + half);
  for (std::size_t i = 0; i < count; ++i) {
    sum[i] += 2.0 * states[i]->Derivative;
    states[i]->Value = start[i] + half * states[i]->Derivative;
  }
  Evaluate(t + half);
  for (std::size_t i = 0; i < count; ++i) {
    sum[i] += 2.0 * states[i]->Derivative;
    states[i]->Value = start[i] + h * states[i]->Derivative;
  }
  Evaluate(t + h);

  // Zero times anything finite is zero: a sum that is not zero tells of a state that is not finite.
  double probe = 0.0;
  for (std::size_t i = 0; i < count; ++i) {
    StateVariable& state = *states[i];
    sum[i] += state.Derivative;
    const long double step =
        static_cast<long double>(sum[i]) * static_cast<long double>(h) * (1.0L / 6.0L);
    state.Value = static_cast<double>(static_cast<long double>(start[i]) + step);
    if (state.PendingSet) {
      state.Value = state.PendingValue;
      state.PendingSet = false;
    }
    probe += state.Value * 0.0;
  }

  // The start of the step on purpose: instruments that sample it see when the step began.
  if (Variable* const timeVar = bench_.TimeVar()) timeVar->Value = t;
  bench_.AdvanceTime(h);

  if (std::fetestexcept(FE_OVERFLOW) || !(probe == 0.0)) ThrowOverflow();
}

void ZelSolver::ThrowOverflow() const {
  std::feclearexcept(FE_OVERFLOW);
  // The state that is not finite or, when the overflow has not reached a state, the largest one.
  const StateVariable* culprit = nullptr;
  for (std::size_t i = 0; i < static_cast<std::size_t>(count_); ++i) {
    const StateVariable* state = states_[i];
    if (!std::isfinite(state->Value)) {
      culprit = state;
      break;
    }
    if (!culprit || std::abs(state->Value) > std::abs(culprit->Value)) culprit = state;
  }
  throw SolverOverflow("floating-point overflow in state \"" + (culprit ? culprit->Name() : "") +
                       "\" (value " + (culprit ? FormatShortest(culprit->Value) : "none") +
                       ") at time " + FormatShortest(bench_.Time()) + " s");
}

}  // namespace torvane
