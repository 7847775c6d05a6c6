#pragma once

#include "core/model.h"

namespace torvane {

/// Gives each constant and each offered signal of a built-in model its description: what it is,
/// with its unit.
void DescribeModel(ZelModel& model);

}  // namespace torvane
