#include "core/numeric.h"

#include <algorithm>

#include "core/messages.h"

namespace torvane {

double Positive(double x, const std::string& name) {
  if (x > 0.0) return x;  // written so that not-a-number fails
  Error(name + " <= 0.");
  return 1e-10;
}

double NonNegative(double x, const std::string& name) {
  if (!(x < 0.0)) return x;
  Error(name + " < 0.");
  return 0.0;
}

double Clamp(double x, double a, double b) {
  return std::clamp(x, std::min(a, b), std::max(a, b));
}

double Log10(double x) {
  return std::log(x) / std::log(10.0);
}

double Exp10(double x) {
  return std::exp(std::log(10.0) * x);
}

}  // namespace torvane
