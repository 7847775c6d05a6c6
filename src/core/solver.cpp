#include "core/solver.h"

#include <cfenv>
#include <cmath>
#include <string>

#include "core/bench.h"
#include "core/messages.h"
#include "core/model.h"
#include "core/text.h"

#if defined(__SSE2_MATH__)
#include <xmmintrin.h>
#endif

namespace torvane {

namespace {

// Whether arithmetic has overflowed since the flag was cleared. Where doubles are computed in SSE
// registers their own status word is enough and costs a tenth of the library's call, which asks the
// long-double unit as well: a combine that overflows there leaves a state that is not finite.
inline bool OverflowRaised() {
#if defined(__SSE2_MATH__)
  return (_mm_getcsr() & _MM_EXCEPT_OVERFLOW) != 0;
#else
  return std::fetestexcept(FE_OVERFLOW) != 0;
#endif
}

}  // namespace

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

void ZelSolver::ClearOverflow() {
  // Testing the flag is cheap, clearing it is not.
  if (OverflowRaised()) std::feclearexcept(FE_OVERFLOW);
}

void ZelSolver::RunUntil(double tEnd) {
  ClearOverflow();
  while (bench_.Time() < tEnd) RkStep(bench_.Time());
}

void ZelSolver::RkStep(double t) {
  StateVariable* const* const states = states_.data();
  double* const start = startValues_.data();
  double* const sum = slopeSum_.data();
  const auto count = static_cast<std::size_t>(count_);
  const double h = h_;
  const double half = 0.5 * h;

  for (std::size_t i = 0; i < count; ++i) start[i] = states[i]->Value;

  // Each slope is read once into a local: the compiler cannot know that the arrays and the states
  // do not overlap.
  model_.Evaluate(t);
  for (std::size_t i = 0; i < count; ++i) {
    const double slope = states[i]->Derivative;
    sum[i] = slope;
    states[i]->Value = start[i] + half * slope;
  }
  model_.Evaluate(t + half);
  for (std::size_t i = 0; i < count; ++i) {
    const double slope = states[i]->Derivative;
    sum[i] += 2.0 * slope;
    states[i]->Value = start[i] + half * slope;
  }
  model_.Evaluate(t + half);
  for (std::size_t i = 0; i < count; ++i) {
    const double slope = states[i]->Derivative;
    sum[i] += 2.0 * slope;
    states[i]->Value = start[i] + h * slope;
  }
  model_.Evaluate(t + h);

  double probe = 0.0;
  for (std::size_t i = 0; i < count; ++i) {
    StateVariable& state = *states[i];
    sum[i] += state.Derivative;
    state.Value = Combine(start[i], sum[i], h);
    state.TakePending();
    probe += state.Value * 0.0;
  }
  EndStep(t, probe);
}

void ZelSolver::EndStep(double t, double probe) {
  // The start of the step on purpose: instruments that sample it see when the step began.
  if (Variable* const timeVar = bench_.TimeVar()) timeVar->Value = t;
  bench_.AdvanceTime(h_);
  // Zero times anything finite is zero: another sum tells of a state that is not finite.
  if (OverflowRaised() || !(probe == 0.0)) ThrowOverflow();
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
