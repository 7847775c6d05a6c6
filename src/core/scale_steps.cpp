#include "core/scale_steps.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

#include "core/messages.h"
#include "core/text.h"

namespace torvane {
namespace {

constexpr double CoarseMantissas[] = {1, 1.2, 1.4, 1.7, 2, 2.5, 3, 3.5, 4.2, 5, 6, 7.07, 8.5, 10};

constexpr double Fine[] = {1,    1.04, 1.08, 1.12, 1.16, 1.2,  1.24, 1.28, 1.32, 1.36, 1.4,
                           1.46, 1.52, 1.58, 1.64, 1.7,  1.76, 1.82, 1.88, 1.94, 2,    2.08,
                           2.16, 2.24, 2.32, 2.4,  2.5,  2.63, 2.76, 2.88, 3,    3.1,  3.2,
                           3.3,  3.4,  3.5,  3.64, 3.78, 3.92, 4.06, 4.2,  4.36, 4.52, 4.68,
                           4.84, 5,    5.2,  5.4,  5.6,  5.8,  6,    6.2,  6.4,  6.6,  6.8,
                           7.07, 7.3,  7.6,  7.9,  8.2,  8.5,  8.8,  9.1,  9.4,  9.7,  10};

constexpr double Decade[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};

// A value that stands on a ladder is moved off it, in the direction of the step, by more than any
// rounding, so that the step never ends where it began.
constexpr double UpNudge = 1.00001;
constexpr double DownNudge = 0.99999;

/// A magnitude a = 10^(Decade + Fraction), with a whole Decade and 0 <= Fraction < 1.
struct Magnitude {
  double Decade;
  double Fraction;
};

Magnitude Split(double a) {
  const double log = std::log10(a);
  const double decade = std::floor(log);
  // Just below a decade the difference rounds up to 1.
  return {decade, std::min(log - decade, std::nextafter(1.0, 0.0))};
}

// mantissa * 10^decade to the nearest double, so that 12 is 12 and 0.00707 is 0.00707 in files and
// edits; a power of ten taken by logarithms is off in the last digits.
double Compose(double mantissa, double decade) {
  double value = mantissa * std::pow(10.0, decade);
  if (std::isfinite(decade)) {
    const std::string text = FormatShortest(mantissa) + "e" + FormatShortest(decade);
    std::from_chars(text.data(), text.data() + text.size(), value);
  }
  return value;
}

double StepUp(double x, Ladder ladder, const char* name) {
  if (x == 0.0) return 0.0;
  const Magnitude a = Split(std::fabs(x) * UpNudge);
  for (const double mantissa : ladder) {
    if (std::log10(mantissa) > a.Fraction) {
      return std::copysign(Compose(mantissa, a.Decade), x);
    }
  }
  Error(std::string("Internal Error:  ") + name + " Failed");
  return std::fabs(x);
}

double StepDown(double x, Ladder ladder, const char* name) {
  if (x == 0.0) return 0.0;
  const Magnitude a = Split(std::fabs(x) * DownNudge);
  for (auto mantissa = ladder.rbegin(); mantissa != ladder.rend(); ++mantissa) {
    if (std::log10(*mantissa) < a.Fraction) {
      return std::copysign(Compose(*mantissa, a.Decade), x);
    }
  }
  Error(std::string("Internal Error:  ") + name + " Failed");
  return std::fabs(x);
}

}  // namespace

Ladder CoarseLadder() {
  return CoarseMantissas;
}

Ladder FineLadder() {
  return Fine;
}

Ladder DecadeLadder() {
  return Decade;
}

double NextHighestThisArray(double x, Ladder ladder) {
  return StepUp(x, ladder, "NextHighestThisArray");
}

double NextLowestThisArray(double x, Ladder ladder) {
  return StepDown(x, ladder, "NextLowestThisArray");
}

double NextHighest10(double x) {
  return StepUp(x, Decade, "NextHighest10");
}

double NextHighest125(double x) {
  if (x == 0.0) return 0.0;
  const Magnitude a = Split(std::fabs(x) * UpNudge);
  double mantissa = 10.0;
  if (a.Fraction < std::log10(2.0)) {
    mantissa = 2.0;
  } else if (a.Fraction < std::log10(5.0)) {
    mantissa = 5.0;
  }
  return std::copysign(Compose(mantissa, a.Decade), x);
}

double NextLowest125(double x) {
  if (x == 0.0) return 0.0;
  const Magnitude a = Split(std::fabs(x) * DownNudge);
  double mantissa = 0.5;
  if (a.Fraction > std::log10(5.0)) {
    mantissa = 5.0;
  } else if (a.Fraction > std::log10(2.0)) {
    mantissa = 2.0;
  } else if (a.Fraction > 0.0) {
    mantissa = 1.0;
  }
  return std::copysign(Compose(mantissa, a.Decade), x);
}

}  // namespace torvane
