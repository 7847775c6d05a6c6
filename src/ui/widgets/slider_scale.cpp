#include "ui/widgets/slider_scale.h"

#include <algorithm>
#include <cmath>

#include "core/constant.h"
#include "core/text.h"

namespace torvane {

namespace {

constexpr double FewestDecades = 2.0;
constexpr double DecadesFromZero = 6.0;  // where zero is the default
constexpr double DecadesBelowDefault = 3.0;
constexpr double NarrowDecades = 1.0;  // a default that is nearer to the upper limit needs no more
constexpr double NarrowLimit = 2.0;    // of a share or a mix, whose default is zero
constexpr int Digits = 3;

/// Of a scale whose lower limit is zero.
double DecadesAboveZero(const Constant& constant) {
  if (constant.Unit() == "%") return 0.0;
  if (constant.Default() <= 0.0) return constant.Upper() > NarrowLimit ? DecadesFromZero : 0.0;
  const double above = std::log10(constant.Upper() / constant.Default());
  return above > NarrowDecades ? above + DecadesBelowDefault : 0.0;
}

/// The decades that the scale spans; 0 when it is linear.
double DecadesOf(const Constant& constant) {
  if (constant.Lower() < 0.0 || constant.Upper() <= 0.0) return 0.0;
  if (constant.Lower() == 0.0) return DecadesAboveZero(constant);
  const double decades = std::log10(constant.Upper() / constant.Lower());
  return decades >= FewestDecades ? decades : 0.0;
}

}  // namespace

double FractionOf(const Constant& constant) {
  const double decades = DecadesOf(constant);
  const double range = constant.Upper() - constant.Lower();
  if (decades == 0.0) return range > 0.0 ? (constant.Value() - constant.Lower()) / range : 0.0;
  const double belowUpper = std::log10(constant.Upper() / constant.Value());  // infinite at zero
  return std::max(0.0, 1.0 - belowUpper / decades);
}

double ValueAt(const Constant& constant, double fraction) {
  if (fraction <= 0.0) return constant.Lower();
  if (fraction >= 1.0) return constant.Upper();
  const double decades = DecadesOf(constant);
  const double value = decades > 0.0
                           ? constant.Upper() * std::pow(10.0, (fraction - 1.0) * decades)
                           : constant.Lower() + fraction * (constant.Upper() - constant.Lower());
  return ParseNumber(FormatGeneral(value, Digits, 1)).value_or(value);
}

}  // namespace torvane
