#pragma once

#include <cstring>

namespace torvane {

/// Two doubles that one instruction computes with, each as by itself.
using Pair [[gnu::vector_size(2 * sizeof(double))]] = double;

/// The two from there on.
inline Pair PairAt(const double* values) {
  Pair pair;
  std::memcpy(&pair, values, sizeof(pair));
  return pair;
}

}  // namespace torvane
