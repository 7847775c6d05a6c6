// Runs a number of steps under the instruments that a row of WatchRows names, for an instruction
// counter. A program by itself, so that the loops that are counted are compiled as ever.

#include <cstdio>
#include <cstdlib>
#include <string>

#include "watchers.h"

namespace torvane::bench {
namespace {

int Count(const std::string& name, long steps) {
  for (const Watchers& row : WatchRows) {
    if (row.Name != name) continue;
    Watched watched(row);
    for (; steps > 0; steps -= Watched::StepsPerTurn) watched.Turn();
    std::printf("%.17g\n", watched.Time());
    return 0;
  }
  std::fprintf(stderr, "usage: torvane_count_watch ROW STEPS\n");
  return 2;
}

}  // namespace
}  // namespace torvane::bench

int main(int argc, char** argv) {
  return torvane::bench::Count(argc > 1 ? argv[1] : "", argc > 2 ? std::atol(argv[2]) : 0);
}
