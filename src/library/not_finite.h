#pragma once

#include <cmath>
#include <initializer_list>

namespace torvane {

/// What a block remembers of an overflow must not survive the reset that follows it.
inline void ZeroNonFinite(std::initializer_list<double*> remembered) {
  for (double* value : remembered) {
    if (!std::isfinite(*value)) *value = 0.0;
  }
}

}  // namespace torvane
