#pragma once

#include <cmath>
#include <string>

namespace torvane {

/// x, or 1e-10 after the error name + " <= 0." when x is not positive or not a number.
double Positive(double x, const std::string& name);

/// x, or 0 after the error name + " < 0." when x is negative.
double NonNegative(double x, const std::string& name);

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
