#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>

#include "fused_loops.h"
#include "models/catalogue.h"
#include "odeint_pi.h"

namespace torvane::bench {

namespace {

constexpr int StepsPerIteration = 1000;

// Simulated time of the check that both trajectories are the same to the bit, in steps: several
// periods of the command.
constexpr int CheckedSteps = 14000;

template <class Fused>
const char* OutputSignal() {
  return "vM";
}
template <>
const char* OutputSignal<FusedAnalogPI>() {
  return "Response";
}
template <>
const char* OutputSignal<FusedResonance>() {
  return "vL";
}

// Model and loop run side by side; a benchmark of loops that differ would measure nothing. Signals
// that a model copies from its states lag one evaluation, so states are compared one step later
// where the model has no state of that name.
template <class Fused>
void CheckSameTrajectory() {
  auto model = LoadModel(FindModel(Fused::Model));
  Variable* signal = model->Bench().FindVar(OutputSignal<Fused>());
  if (!signal->IsState()) {
    for (Variable* v : model->Bench().Variables()) {
      if (v->Name() == "Zel2JMech-vL") signal = v;
    }
  }
  Fused fused;
  for (int i = 0; i < CheckedSteps; ++i) {
    model->Solver().RunUntil(model->Time() + 0.5 * Fused::Step);
    fused.RunStep();
    if (signal->Value != fused.Output()) {
      std::fprintf(stderr, "%s: step %d gives %.17g, the hand-fused loop %.17g\n", Fused::Model, i,
                   signal->Value, fused.Output());
      std::exit(2);
    }
  }
}

template <class Fused>
void RunEngine(benchmark::State& state) {
  auto model = LoadModel(FindModel(Fused::Model));
  for (auto _ : state) {
    model->Solver().RunUntil(model->Time() + (StepsPerIteration - 0.5) * Fused::Step);
  }
  state.SetItemsProcessed(state.iterations() * StepsPerIteration);
}

template <class Loop>
void RunLoop(benchmark::State& state) {
  Loop loop;
  for (auto _ : state) {
    for (int i = 0; i < StepsPerIteration; ++i) loop.RunStep();
    benchmark::DoNotOptimize(loop.Output());
  }
  state.SetItemsProcessed(state.iterations() * StepsPerIteration);
}

template <class Fused>
void Register(const std::string& figure) {
  // Before the first run: a model class remembers what its last model saw.
  CheckSameTrajectory<Fused>();
  benchmark::RegisterBenchmark(("Engine/" + figure).c_str(), RunEngine<Fused>);
  benchmark::RegisterBenchmark(("Fused/" + figure).c_str(), RunLoop<Fused>);
}

const bool registered = [] {
  Register<FusedPiPlus>("2-1");
  Register<FusedAnalogPI>("3-1");
  Register<FusedPid>("6-1");
  Register<FusedResonance>("15-1");
  benchmark::RegisterBenchmark("Odeint/3-1", RunLoop<OdeintAnalogPI>);
  return true;
}();

}  // namespace

}  // namespace torvane::bench
