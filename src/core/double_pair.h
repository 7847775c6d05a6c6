#pragma once

#include <cstring>

namespace torvane {

/// Two doubles that one instruction computes with, each as by itself.
using DoublePair [[gnu::vector_size(2 * sizeof(double))]] = double;

/// The two from there on.
inline DoublePair DoublePairAt(const double* values) {
  DoublePair pair;
  std::memcpy(&pair, values, sizeof(pair));
  return pair;
}

}  // namespace torvane
