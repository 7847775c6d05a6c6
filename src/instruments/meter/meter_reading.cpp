// What of a meter's reading can be told.

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "core/text.h"
#include "instruments/meter/meter.h"

namespace torvane {
namespace {

constexpr double SettledShare = 0.02;  // of what is read: a swing of 1 % to either side
constexpr int ShownDigits = 5;
constexpr double LeastRounded = 1e-6;  // units that are written without an exponent
constexpr double MostRounded = 1e6;

// The value in whole units, a power of ten.
std::string InUnits(double value, double unit) {
  const double whole = std::round(value / unit) * unit;
  if (unit < LeastRounded || std::abs(whole) > MostRounded) return FormatEdit(whole);
  std::array<char, 64> text{};
  const int decimals = std::max(0, -static_cast<int>(std::lround(std::log10(unit))));
  const auto end = std::to_chars(text.data(), text.data() + text.size(), whole == 0.0 ? 0.0 : whole,
                                 std::chars_format::fixed, decimals);
  return {text.data(), end.ptr};
}

}  // namespace

bool ZelMeter::IsSettled() const {
  if (kind_ == MeterKind::Harmonic || spread_.IsEmpty()) return true;
  const double level = kind_ == MeterKind::Average
                           ? spread_.Peak()
                           : std::max(std::abs(spread_.Low()), std::abs(spread_.High()));
  return spread_.High() - spread_.Low() <= SettledShare * level;
}

// Of a sine of frequency f well above the filter's, the average keeps F / f of its amplitude; its
// square swings at 2 f by F / (2 f), and the root of that by half as much. A correlation swings as
// the product that it averages.
double ZelMeter::SettledFrom() const {
  const double times = kind_ == MeterKind::Average ? 2.0 : kind_ == MeterKind::Rms ? 0.5 : 1.0;
  return lpf_ * times / SettledShare;
}

std::string ZelMeter::ValueText() const {
  const double swing =
      kind_ == MeterKind::Harmonic || spread_.IsEmpty() ? 0.0 : spread_.High() - spread_.Low();
  const double largest = std::max(std::abs(spread_.Low()), std::abs(spread_.High()));
  if (!(swing > largest * std::pow(10.0, -ShownDigits)) || !std::isfinite(swing)) {
    return FormatSteady(reading_.Value);
  }
  const double middle =
      kind_ == MeterKind::Rms
          ? std::sqrt(0.5 * (spread_.Low() * spread_.Low() + spread_.High() * spread_.High()))
          : 0.5 * (spread_.Low() + spread_.High());
  // The middle stands closer than what swings about it.
  return InUnits(middle, std::pow(10.0, std::floor(std::log10(swing))));
}

std::string ZelMeter::SettledFromText() const {
  const double hz = SettledFrom();
  return InUnits(hz, std::pow(10.0, std::floor(std::log10(hz)) - 1.0));
}

}  // namespace torvane
