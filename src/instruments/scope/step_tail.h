#pragma once

#include <vector>

#include "instruments/scope/step_measures.h"

namespace torvane {

/// The values that a step of the response counts from and to.
struct StepEnds {
  double From = 0.0;
  double To = 0.0;
};

/// Where a response ends, as far as its trace tells.
struct StepTail {
  StepGap Gap = StepGap::None;
  std::vector<StepEnds> Ends;  ///< the likeliest first, then others that the trace does not exclude
};

/// Looks at the means of the last three eighths of the step. `band` is how far from its final value
/// a settled response may be, as a share of the step.
StepTail FindTail(const StepTraces& traces, const StepStretch& stretch, double band);

}  // namespace torvane
