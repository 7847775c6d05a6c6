#include "library/d_controller.h"

#include "core/bench.h"
#include "core/messages.h"

namespace torvane {

ZelDController::ZelDController(ZelBenchTop& bench, double period) try : period_(period) {
  bench.AddTimeDriven(*this);
} catch (...) {
  Error("Fault in ZelDController :: ZelDController");
}

void ZelDController::Reset() {
  for (const auto& block : blocks_) block->DropNonFinite();
}

}  // namespace torvane
