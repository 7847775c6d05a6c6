#include "instruments/step_clock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace torvane {
namespace {

/// The steps at which the clock falls due, on a bench whose time is a running sum and whose chunks
/// are of 17 steps at most.
std::vector<int> StepsTaken(StepClock clock, double start, double h, double interval, int steps) {
  std::vector<int> taken;
  clock.Start(start, h);
  double t = start;
  for (int step = 0; step <= steps;) {
    if (clock.TakeDue(t, interval)) taken.push_back(step);
    const double until = std::min(clock.Request(), t + 16.5 * h);
    for (; t < until; t += h) ++step;
  }
  return taken;
}

// Of 25, 12.5, 33.3, 2.6 and 0.7 steps, over three seconds and more.
TEST(StepClock, TakesEachInstantAtItsStepHoweverLongTheBenchHasRun) {
  constexpr int Steps = 300000;
  constexpr std::pair<int, int> Intervals[] = {{25, 1}, {25, 2}, {100, 3}, {13, 5}, {7, 10}};
  for (const double start : {0.0, 4.0, 10.0, 40.0, 1465.0, 10000.0}) {
    for (const double h : {1e-5, 5e-5}) {
      for (const auto& interval : Intervals) {
        const int p = interval.first;
        const int q = interval.second;
        std::vector<int> atOrAfter;
        std::vector<int> nearest;
        for (int k = 0; atOrAfter.size() <= Steps && k * std::int64_t{p} / q <= Steps; ++k) {
          const std::int64_t parts = k * std::int64_t{p};
          // One a step at most, whatever is due.
          atOrAfter.push_back(p < q ? k : static_cast<int>((parts + q - 1) / q));
          nearest.push_back(p < q ? k : static_cast<int>((2 * parts + q - 1) / (2 * q)));
        }
        const auto taken = [&](double slack) {
          std::vector<int> steps = StepsTaken(StepClock(slack), start, h, h * p / q, Steps);
          steps.resize(std::min(steps.size(), atOrAfter.size()));
          return steps;
        };
        EXPECT_EQ(taken(StepClock::Sampling), atOrAfter) << start << " " << h << " " << p;
        EXPECT_EQ(taken(StepClock::Nearest), nearest) << start << " " << h << " " << p;
      }
    }
  }
}

}  // namespace
}  // namespace torvane
