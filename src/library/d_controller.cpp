#include "library/d_controller.h"

#include "core/bench.h"
#include "core/messages.h"

namespace torvane {

ZelDController::ZelDController(ZelBenchTop& bench, double period, ControllerClock* clock) try
    : bench_(bench), clock_(clock ? *clock : own_) {
  clock_.SetPeriod(period);
  bench.AddTimeDriven(*this);
} catch (...) {
  Error("Fault in ZelDController :: ZelDController");
}

void ZelDController::Reset(ResetKind kind) {
  for (const auto& block : blocks_) block->Reset(kind);
  if (kind == ResetKind::States) return;
  // The time goes on through a reset: the first sample falls due now.
  clock_.StartAt(bench_.Time());
}

void ZelDController::Carry(Carried& carried) {
  carried.Keep(clock_);
  carried.Period(clock_.Period());
  for (const auto& block : blocks_) block->Carry(carried);
}

}  // namespace torvane
