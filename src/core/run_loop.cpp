#include "core/run_loop.h"

#include <algorithm>

#include "core/messages.h"
#include "core/model.h"

namespace torvane {

PassResult RunPass(ZelModel& model, int chunks) {
  chunks = std::min(chunks, ChunksPerPass);
  for (int chunk = 0; chunk < chunks; ++chunk) {
    if (model.Bench().AnyScopeBusy()) return PassResult::Paused;
    if (!model.RunChunk()) return PassResult::Stopped;
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
