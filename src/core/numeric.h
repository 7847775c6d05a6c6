#pragma once

#include <cmath>
#include <cstdint>
#include <string>

namespace torvane {

/// x, or 1e-10 after the error name + " <= 0." when x is not positive or not a number.
double Positive(double x, const std::string& name);

/// x, or 0 after the error name + " < 0." when x is negative.
double NonNegative(double x, const std::string& name);

/// The largest whole number that is not above x, without a library call while it fits an integer.
inline double Floor(double x) {
  if (!(std::abs(x) < 9e18)) [[unlikely]] {
    return std::floor(x);
  }
  const auto whole = static_cast<double>(static_cast<std::int64_t>(x));
  return whole > x ? whole - 1.0 : whole;
}

/// floor(x / step) * step; x itself when step is 0.
inline double FloorToStep(double x, double step) {
  return step == 0.0 ? x : std::floor(x / step) * step;
}

/// x rounded to the nearest multiple of step, halves upwards.
inline double RoundToStep(double x, double step) {
  return FloorToStep(x + step / 2.0, step);
}

/// x, or 0 for minus zero, which nobody wants to read.
inline double WithoutMinusZero(double x) {
  return x + 0.0;
}

/// x limited to the range between a and b, given in either order.
double Clamp(double x, double a, double b);

/// ln x / ln 10.
double Log10(double x);

/// e^(ln 10 * x).
double Exp10(double x);

}  // namespace torvane
