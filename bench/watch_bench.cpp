#include <benchmark/benchmark.h>

#include <string>

#include "watchers.h"

// What watching costs in time; bench/count.sh has it in instructions.

namespace torvane::bench {

namespace {

void RunWatched(benchmark::State& state, const Watchers& watchers) {
  Watched watched(watchers);
  for (auto _ : state) watched.Turn();
  state.counters["step"] =
      benchmark::Counter(Watched::StepsPerTurn, benchmark::Counter::kIsIterationInvariantRate |
                                                    benchmark::Counter::kInvert);
}

const bool registered = [] {
  for (const Watchers& row : WatchRows) {
    benchmark::RegisterBenchmark((std::string("Watch/") + row.Name).c_str(), RunWatched, row);
  }
  return true;
}();

}  // namespace

}  // namespace torvane::bench
