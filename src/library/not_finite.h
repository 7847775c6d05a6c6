#pragma once

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace torvane {

/// What a block remembers of an overflow must not survive the reset that follows it: when one of
/// its remembered values is not finite, all of them start again at 0.
inline void ForgetUnlessFinite(std::initializer_list<double*> remembered) {
  if (std::all_of(remembered.begin(), remembered.end(),
                  [](const double* value) { return std::isfinite(*value); })) {
    return;
  }
  for (double* value : remembered) *value = 0.0;
}

}  // namespace torvane
