#pragma once

#include <span>
#include <string>

#include "instruments/analyser/response_columns.h"
#include "instruments/analyser/response_curve.h"

namespace torvane {

/// Beyond this a gain is no measurement, dB.
inline constexpr double MaxResponseGain = 2000.0;

/// What a response is told in.
struct ResponseColumns {
  ResponseUnit Frequency = ResponseUnit::Hz;
  ResponseColumn First;   ///< gain or real part
  ResponseColumn Second;  ///< phase or imaginary part
};

/// A point in the units of its columns.
struct RawPoint {
  double Frequency = 0.0;
  double First = 0.0;
  double Second = 0.0;
  double Coherence = 1.0;
  bool Excited = true;
};

/// Finds the units that captions do not tell: by hints, which have the last word, and where the
/// values leave no doubt. A negative gain is in dB, a phase beyond two turns of radians in degrees.
/// Returns what stays in doubt; empty when nothing does.
std::string TellUnits(ResponseColumns& columns, std::span<const RawPoint> points,
                      const ResponseHints& hints);

/// The points in Hz, dB and degrees; a magnitude of 0 is -200 dB. Returns what is wrong with them.
std::string MakeCurve(const ResponseColumns& columns, std::span<const RawPoint> points,
                      ResponseCurve& curve);

}  // namespace torvane
