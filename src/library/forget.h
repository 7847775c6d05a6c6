#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/time_driven.h"

namespace torvane {

/// Sets what a block remembers to 0 when a reset asks for it, or when one of the values is not
/// finite: what an overflow has left must not survive the reset that follows it.
inline void Forget(ResetKind kind, const std::vector<double*>& remembered) {
  const auto finite = [](const double* value) { return std::isfinite(*value); };
  if (kind == ResetKind::States && std::all_of(remembered.begin(), remembered.end(), finite)) {
    return;
  }
  for (double* value : remembered) *value = 0.0;
}

}  // namespace torvane
