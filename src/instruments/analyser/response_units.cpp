#include "instruments/analyser/response_units.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace torvane {

namespace {

constexpr double TwoTurns = 12.6;  // radians
constexpr double NoGain = -200.0;  // dB

double ToHz(ResponseUnit unit) {
  switch (unit) {
    case ResponseUnit::MilliHz:
      return 1e-3;
    case ResponseUnit::KHz:
      return 1e3;
    case ResponseUnit::MegaHz:
      return 1e6;
    case ResponseUnit::RadPerSecond:
      return 0.5 / std::numbers::pi;
    default:
      return 1.0;
  }
}

double ToDecibel(double ratio) {
  return ratio > 0.0 ? 20.0 * std::log10(ratio) : NoGain;
}

double ToDegrees(double radians) {
  return radians * 180.0 / std::numbers::pi;
}

}  // namespace

std::string TellUnits(ResponseColumns& columns, std::span<const RawPoint> points,
                      const ResponseHints& hints) {
  const auto prefer = [](ResponseUnit& unit, ResponseUnit hint) {
    if (hint != ResponseUnit::Unknown) unit = hint;
  };
  ResponseUnit& gain = columns.First.Unit;
  ResponseUnit& phase = columns.Second.Unit;
  prefer(columns.Frequency, hints.Units[0]);
  if (columns.First.Role == ResponseRole::Real) return {};
  prefer(gain, hints.Units[1]);
  prefer(phase, hints.Units[2]);
  const auto any = [&](auto is) { return std::any_of(points.begin(), points.end(), is); };
  if (gain == ResponseUnit::Unknown && any([](const auto& point) { return point.First < 0.0; })) {
    gain = ResponseUnit::Decibel;
  }
  const bool moves = any([](const auto& point) { return point.Second != 0.0; });
  const bool far = any([](const auto& point) { return std::abs(point.Second) > TwoTurns; });
  if (phase == ResponseUnit::Unknown && (columns.First.Implied || far || !moves)) {
    phase = ResponseUnit::Degrees;
  }
  if (gain == ResponseUnit::Unknown) return "the gain may be in dB or a ratio";
  if (phase == ResponseUnit::Unknown) return "the phase may be in degrees or radians";
  return {};
}

std::string MakeCurve(const ResponseColumns& columns, std::span<const RawPoint> points,
                      ResponseCurve& curve) {
  for (const RawPoint& raw : points) {
    ResponsePoint point{raw.Frequency * ToHz(columns.Frequency), raw.First, raw.Second,
                        raw.Coherence, raw.Excited};
    if (columns.First.Role == ResponseRole::Real) {
      point.Gain = ToDecibel(std::hypot(raw.First, raw.Second));
      point.Phase = ToDegrees(std::atan2(raw.Second, raw.First));
    } else {
      if (columns.First.Unit == ResponseUnit::Ratio) {
        if (raw.First < 0.0) return "a magnitude is negative";
        point.Gain = ToDecibel(raw.First);
      }
      if (columns.Second.Unit == ResponseUnit::Radians) point.Phase = ToDegrees(raw.Second);
    }
    if (std::abs(point.Gain) > MaxResponseGain) return "no gain in dB";
    if (!curve.empty() && point.Hz == curve.back().Hz) return "two frequencies are the same in Hz";
    curve.push_back(point);
  }
  return {};
}

}  // namespace torvane
