#pragma once

#include "linear/linear_model.h"

namespace torvane {

class ZelModel;

/// The linear model about the point at which the model stands still, or moves on steadily, with its
/// generators held at their offsets. Takes a model of the caller's own, which is never the same
/// again: its generators rest, and what its loop names as not linear (a sensor's resolution) is set
/// so that it is. A loop that has no such point, or none that small changes stay near to, is a
/// LinearFault.
LinearModel Linearize(ZelModel& model);

}  // namespace torvane
