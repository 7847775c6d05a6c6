#include "core/run_loop.h"

#include <algorithm>

#include "core/messages.h"
#include "core/model.h"

namespace torvane {

namespace {
constexpr double StepsPerLook = 256.0;  // between two questions whether the time is up
}  // namespace

PassResult RunPass(ZelModel& model, const std::function<bool()>& timeUp, double until) {
  ZelBenchTop& bench = model.Bench();
  const double span = StepsPerLook * model.Solver().Step();
  double nextLook = std::min(bench.Time() + span, until);
  for (int chunk = 0; chunk < ChunksPerPass; ++chunk) {
    if (bench.AnyScopeBusy()) return PassResult::Paused;
    if (bench.Time() >= until) return PassResult::Running;
    double stop = 0.0;
    do {
      const auto ahead = model.Solver().RunAhead(nextLook, ChunksPerPass - 1 - chunk, nullptr);
      chunk += ahead.Samples;
      stop = ahead.Stop;
      if (bench.Time() < nextLook) continue;
      if (bench.Time() >= until || (timeUp && timeUp())) return PassResult::Running;
      nextLook = std::min(bench.Time() + span, until);
    } while (bench.Time() < stop);
    if (!bench.ServiceInstruments()) return PassResult::Stopped;
  }
  return PassResult::Running;
}

void OfferResetAfterOverflow(ZelModel& model, const SolverOverflow& overflow) {
  if (ErrorQuestion("An overflow occurred, posibly because "
                    "the state equation solver became unstable.\n"
                    "The model will be automatically stopped.  Also, it is "
                    "recommended that you reset the state variables.\n\n"
                    "Reset Variables?\n\n(" +
                    std::string(overflow.what()) + ")")) {
    model.ResetEverything();
  }
}

void ReportRunTimeError(const std::exception& error) {
  torvane::Error(std::string("The following run-time error occurred:   ") + error.what() +
                 ".\nThe model will be automatically stopped.");
}

}  // namespace torvane
