#include "ratio_reporter.h"

#include <algorithm>
#include <cstdio>

namespace torvane::bench {

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.run_type == Run::RT_Iteration) {
      times_[run.run_name.function_name].push_back(run.GetAdjustedCPUTime());
    }
  }
  ConsoleReporter::ReportRuns(runs);
}

double RatioReporter::Median(const std::string& name) const {
  const auto found = times_.find(name);
  if (found == times_.end()) return 0.0;
  std::vector<double> sorted = found->second;
  std::sort(sorted.begin(), sorted.end());
  return sorted[sorted.size() / 2];
}

bool RatioReporter::PrintRatios(const std::vector<Ratio>& ratios) const {
  bool met = true;
  std::printf("\n%-44s %8s %8s\n", "Ratio of medians", "measured", "goal");
  for (const Ratio& ratio : ratios) {
    const double own = Median(ratio.Benchmark);
    const double peer = Median(ratio.Peer);
    if (own <= 0.0 || peer <= 0.0) continue;
    std::printf("%-44s %8.2f %8.2f%s\n", ratio.Title.c_str(), own / peer, ratio.Goal,
                own / peer <= ratio.Goal ? "" : "  missed");
    met = met && own / peer <= ratio.Goal;
  }
  return met;
}

}  // namespace torvane::bench
