#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace torvane::bench {

/// A ratio to print after a run: median time of one benchmark over that of its peer, and the
/// largest that is accepted.
struct Ratio {
  std::string Title;
  std::string Benchmark;
  std::string Peer;
  double Goal;
};

/// Console reporter that prints ratios of medians, all taken in one run, after the table.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override;

  /// Prints the ratios whose two sides were run; true when each meets its goal.
  bool PrintRatios(const std::vector<Ratio>& ratios) const;

 private:
  double Median(const std::string& name) const;

  std::map<std::string, std::vector<double>> times_;
};

}  // namespace torvane::bench
