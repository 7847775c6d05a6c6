#pragma once

#include <cfenv>
#include <cmath>
#include <limits>

namespace torvane::loops {

// Each operation as a type of its own, from which instructions are made at compile time.

/// Not a number; the flag says so, which not every function of the library does.
inline double NoNumber() {
  std::feraiseexcept(FE_INVALID);
  return std::numeric_limits<double>::quiet_NaN();
}

struct Add {
  static double Of(double a, double b) { return a + b; }
};
struct Subtract {
  static double Of(double a, double b) { return a - b; }
};
struct Multiply {
  static double Of(double a, double b) { return a * b; }
};
struct Divide {
  static double Of(double a, double b) { return a / b; }
};
struct Power {
  // Squares are what most powers are.
  static double Of(double a, double b) { return b == 2.0 ? a * a : std::pow(a, b); }
};
struct Atan2 {
  static double Of(double a, double b) { return std::atan2(a, b); }
};
struct Min {
  static double Of(double a, double b) { return b < a ? b : a; }
};
struct Max {
  static double Of(double a, double b) { return a < b ? b : a; }
};
/// The remainder with the sign of b.
struct Mod {
  static double Of(double a, double b) { return a - std::floor(a / b) * b; }
};

struct Negate {
  static double Of(double a) { return -a; }
};
struct Abs {
  static double Of(double a) { return std::abs(a); }
};
struct Sign {
  static double Of(double a) { return a > 0.0 ? 1.0 : a < 0.0 ? -1.0 : 0.0; }
};
struct Floor {
  static double Of(double a) { return std::floor(a); }
};
struct Ceil {
  static double Of(double a) { return std::ceil(a); }
};
struct Sqrt {
  static double Of(double a) { return a < 0.0 ? NoNumber() : std::sqrt(a); }
};
struct Exp {
  static double Of(double a) { return std::exp(a); }
};
struct Log {
  static double Of(double a) { return std::log(a); }
};
struct Log10 {
  static double Of(double a) { return a < 0.0 ? NoNumber() : std::log10(a); }
};
struct Sin {
  static double Of(double a) { return std::sin(a); }
};
struct Cos {
  static double Of(double a) { return std::cos(a); }
};
struct Tan {
  static double Of(double a) { return std::tan(a); }
};
struct Asin {
  static double Of(double a) { return std::abs(a) > 1.0 ? NoNumber() : std::asin(a); }
};
struct Acos {
  static double Of(double a) { return std::abs(a) > 1.0 ? NoNumber() : std::acos(a); }
};
struct Atan {
  static double Of(double a) { return std::atan(a); }
};

struct Less {
  static bool Of(double a, double b) { return a < b; }
};
struct LessEqual {
  static bool Of(double a, double b) { return a <= b; }
};
struct Equal {
  static bool Of(double a, double b) { return a == b; }
};
struct NotEqual {
  static bool Of(double a, double b) { return a != b; }
};

}  // namespace torvane::loops
