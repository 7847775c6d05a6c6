#include "library/d_controller.h"

#include "core/bench.h"
#include "core/messages.h"

namespace torvane {

ZelDController::ZelDController(ZelBenchTop& bench, double period) try
    : bench_(bench), period_(period) {
  bench.AddTimeDriven(*this);
} catch (...) {
  Error("Fault in ZelDController :: ZelDController");
}

void ZelDController::Reset(ResetKind kind) {
  for (const auto& block : blocks_) block->Reset(kind);
  if (kind == ResetKind::States) return;
  // The time goes on through a reset: the first sample falls due now.
  nextSample_ = bench_.Time();
  sampleDue_ = false;
}

}  // namespace torvane
