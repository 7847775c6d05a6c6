#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/run_loop.h"
#include "instruments/analyser/analyser.h"
#include "instruments/meter/meter.h"
#include "instruments/scope/scope.h"
#include "models/catalogue.h"

// What watching costs: the desktop's run loop on 2-1 with the instruments of each row and no
// others. A step of "nothing" is what the loop itself takes. Analysers and meters stand beside a
// scope, as on the desktop: between two points a sweep leaves it to the others when to stop.

namespace torvane::bench {

namespace {

constexpr int StepsPerIteration = 20000;

enum class Traces { None, One, Eight };

struct Watchers {
  Traces Scope = Traces::None;
  int Meters = 0;
  std::vector<InstrumentKind> Analysers = {};
};

void SetUpScope(ZelModel& model, Traces traces) {
  auto& scope = dynamic_cast<ZelScope&>(*model.Bench().Instruments(InstrumentKind::Scope).front());
  if (traces == Traces::None) {
    model.Bench().RemoveInstrument(scope);
    return;
  }
  const std::size_t count = traces == Traces::One ? 1 : 8;
  for (std::size_t i = 0; i < scope.Channels().size(); ++i) {
    scope.SetDisplayed(*scope.Channels()[i], i < count);
  }
}

// Whoever has finished measures again.
void KeepMeasuring(ZelModel& model, const std::vector<InstrumentKind>& kinds) {
  for (const InstrumentKind kind : kinds) {
    auto& analyser = dynamic_cast<FrequencyAnalyser&>(*model.Bench().Instruments(kind).front());
    if (!analyser.Measuring()) analyser.Run();
  }
}

// Without an instrument a pass has nothing to end it but the time that it is given.
void RunFor(ZelModel& model, double time) {
  const double until = model.Time() + time;
  while (model.Time() < until) RunPass(model, {}, until);
}

void RunWatched(benchmark::State& state, const Watchers& watchers) {
  const auto model = LoadModel(FindModel("2-1 PI+ Controller"));
  SetUpScope(*model, watchers.Scope);
  std::vector<std::unique_ptr<ZelMeter>> meters;
  for (int i = 0; i < watchers.Meters; ++i) {
    meters.push_back(std::make_unique<ZelMeter>(model->Bench(), "Meter " + std::to_string(i)));
  }
  model->Bench().StartScopes();
  for (auto _ : state) {
    KeepMeasuring(*model, watchers.Analysers);
    RunFor(*model, StepsPerIteration * model->Solver().Step());
  }
  state.counters["step"] =
      benchmark::Counter(StepsPerIteration, benchmark::Counter::kIsIterationInvariantRate |
                                                benchmark::Counter::kInvert);
}

const bool registered = [] {
  using enum InstrumentKind;
  const std::vector<std::pair<std::string, Watchers>> rows = {
      {"nothing", {}},
      {"scope_1_trace", {.Scope = Traces::One}},
      {"scope_8_traces", {.Scope = Traces::Eight}},
      {"scope_and_fft", {.Scope = Traces::One, .Analysers = {FftAnalyser}}},
      {"scope_and_swept_sine", {.Scope = Traces::One, .Analysers = {SweptSine}}},
      {"scope_and_both_analysers", {.Scope = Traces::One, .Analysers = {FftAnalyser, SweptSine}}},
      {"scope_and_1_meter", {.Scope = Traces::One, .Meters = 1}},
      {"scope_and_5_meters", {.Scope = Traces::One, .Meters = 5}},
      {"scope_and_10_meters", {.Scope = Traces::One, .Meters = 10}},
      {"scope_and_15_meters", {.Scope = Traces::One, .Meters = 15}},
  };
  for (const auto& [name, watchers] : rows) {
    benchmark::RegisterBenchmark(("Watch/" + name).c_str(), RunWatched, watchers);
  }
  return true;
}();

}  // namespace

}  // namespace torvane::bench
