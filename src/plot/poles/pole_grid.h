#pragma once

#include <complex>
#include <string>
#include <vector>

namespace torvane {

/// A line of one damping, or of one natural frequency, in the upper half of a plane of poles; what
/// the lower half has is its image.
struct PoleGridLine {
  std::vector<std::complex<double>> Points;
  std::string Label;
};

/// Lines s = w (-zeta + j sqrt(1 - zeta^2)) in the s plane, or z = exp(s ts) in the z plane of a
/// loop that samples every `ts` seconds; there ts is above 0. They go as far as `reach`, 1/s.

/// Of the dampings 0.1 to 0.9, from the origin on.
std::vector<PoleGridLine> DampingLines(double ts, double reach);
/// Of natural frequencies at round distances, from the undamped end on.
std::vector<PoleGridLine> FrequencyLines(double ts, double reach);

}  // namespace torvane
