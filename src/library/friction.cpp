#include "library/friction.h"

#include <cmath>

#include "core/numeric.h"

namespace torvane {

ZelFricCalc::ZelFricCalc(const FrictionSettings& settings)
    : tC_(NonNegative(settings.TC, "ZelFricCalc, tC")),
      tS_(NonNegative(settings.TS, "ZelFricCalc, tS")),
      pS_(Positive(settings.PS, "ZelFricCalc, pS")) {}

void ZelFricCalc::Reset(ResetKind kind) {
  if (kind == ResetKind::States && std::isfinite(anchor_)) return;
  anchor_ = 0.0;
  motion_ = Motion::Stuck;
}

}  // namespace torvane
