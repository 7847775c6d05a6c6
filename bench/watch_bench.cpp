#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

#include "watchers.h"

// What watching costs in time; bench/count.sh has it in instructions.

namespace torvane::bench {

namespace {

void RunWatched(benchmark::State& state, const char* model, const Watchers& watchers) {
  Watched watched(model, watchers);
  for (auto _ : state) watched.Turn();
  state.counters["step"] =
      benchmark::Counter(Watched::StepsPerTurn, benchmark::Counter::kIsIterationInvariantRate |
                                                    benchmark::Counter::kInvert);
}

const bool registered = [] {
  for (const char* model : WatchedModels) {
    const std::string figure(model, std::strcspn(model, " "));
    for (const Watchers& row : WatchRows) {
      const std::string name = "Watch/" + figure + "/" + row.Name;
      benchmark::RegisterBenchmark(name.c_str(), RunWatched, model, row);
    }
  }
  return true;
}();

}  // namespace

}  // namespace torvane::bench
