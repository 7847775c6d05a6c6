// Runs a number of steps of a model, named by its figure, under the instruments that a row of
// WatchRows names, for an instruction counter. A program by itself, so that the loops that are
// counted are compiled as ever.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "watchers.h"

namespace torvane::bench {
namespace {

int Count(const std::string& figure, const std::string& name, long steps) {
  const auto model = std::ranges::find_if(
      WatchedModels, [&](const std::string& watched) { return watched.starts_with(figure + ' '); });
  const auto row = std::ranges::find(WatchRows, name, &Watchers::Name);
  if (model == std::end(WatchedModels) || row == std::end(WatchRows)) {
    std::fprintf(stderr, "usage: torvane_count_watch FIGURE ROW STEPS\n");
    return 2;
  }
  Watched watched(*model, *row);
  for (; steps > 0; steps -= Watched::StepsPerTurn) watched.Turn();
  std::printf("%.17g\n", watched.Time());
  return 0;
}

}  // namespace
}  // namespace torvane::bench

int main(int argc, char** argv) {
  if (argc != 4) return torvane::bench::Count("", "", 0);
  return torvane::bench::Count(argv[1], argv[2], std::atol(argv[3]));
}
