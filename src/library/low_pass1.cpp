#include "library/low_pass1.h"

#include "core/angle.h"
#include "core/bench.h"
#include "core/messages.h"
#include "library/forget.h"

namespace torvane {

ZelLowPass1::ZelLowPass1(ZelBenchTop& bench, double frequencyHz) try
    : state_(bench, "LowPass1", "Null", 0.0, {}, Visibility::Internal) {
  SetFrequency(frequencyHz);
  bench.AddTimeDriven(*this);
} catch (...) {
  Error("Fault in ZelLowPass1 :: ZelLowPass1");
}

void ZelLowPass1::Reset(ResetKind kind) {
  Forget(kind, {&u_});
  y_ = state_.Value;
}

void ZelLowPass1::SetFrequency(double hz) {
  omega_ = 2.0 * Pi * hz;
}

}  // namespace torvane
