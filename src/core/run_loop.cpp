#include "core/run_loop.h"

#include <algorithm>

#include "core/messages.h"
#include "core/model.h"

namespace torvane {

namespace {
constexpr double StepsPerLook = 256.0;  // between two questions whether the time is up
}  // namespace

PassResult RunPass(ZelModel& model, const std::function<bool()>& timeUp) {
  ZelBenchTop& bench = model.Bench();
  const double span = StepsPerLook * model.Solver().Step();
  double nextLook = bench.Time() + span;
  for (int chunk = 0; chunk < ChunksPerPass; ++chunk) {
    if (bench.AnyScopeBusy()) return PassResult::Paused;
    const double stop = bench.NextStopTime();
    while (bench.Time() < stop) {
      model.Solver().RunUntil(std::min(stop, nextLook));
      if (bench.Time() < nextLook) break;
      if (timeUp && timeUp()) return PassResult::Running;
      nextLook = bench.Time() + span;
    }
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
