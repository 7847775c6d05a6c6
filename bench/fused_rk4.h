#pragma once

#include <array>
#include <cstddef>

#include "fused_wave.h"

namespace torvane::bench {

/// One classical Runge-Kutta step of N states held in an array, with the evaluation inlined:
/// evaluate(t, x, dx) writes the slopes of x at t.
template <std::size_t N, class Evaluate>
inline void FusedStep(std::array<double, N>& x, double t, double h, Evaluate&& evaluate) {
  const double half = 0.5 * h;
  const std::array<double, N> start = x;
  std::array<double, N> slope;
  std::array<double, N> sum;
  evaluate(t, x, slope);
  for (std::size_t i = 0; i < N; ++i) {
    sum[i] = slope[i];
    x[i] = start[i] + half * slope[i];
  }
  evaluate(t + half, x, slope);
  for (std::size_t i = 0; i < N; ++i) {
    sum[i] += 2.0 * slope[i];
    x[i] = start[i] + half * slope[i];
  }
  evaluate(t + half, x, slope);
  for (std::size_t i = 0; i < N; ++i) {
    sum[i] += 2.0 * slope[i];
    x[i] = start[i] + h * slope[i];
  }
  evaluate(t + h, x, slope);
  for (std::size_t i = 0; i < N; ++i) {
    sum[i] += slope[i];
    x[i] = Combine(start[i], sum[i], h);
  }
}

}  // namespace torvane::bench
