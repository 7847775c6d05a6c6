#pragma once

#include <optional>
#include <span>
#include <vector>

#include "instruments/analyser/response_curve.h"

namespace torvane {

/// What is read off a response, from the points that can be trusted: of a closed one, which begins
/// within 6 dB of unity, bandwidth and peaking, which say how it follows its command; of any other,
/// taken for an open loop, all crossings, which say how far the closed loop is from instability.
///
/// Crossings are interpolated on the logarithmic frequency axis, between means over 1 % of
/// frequency where the points are as close as that.
struct Margins {
  /// A frequency and what is read there.
  struct Reading {
    double Hz = 0.0;
    double Value = 0.0;
  };

  static constexpr double BandwidthGain = -3.0;    ///< dB
  static constexpr double BandwidthPhase = -90.0;  ///< degrees

  bool Closed = false;

  /// Where the response first falls through BandwidthGain and through BandwidthPhase, Hz.
  std::optional<double> GainBandwidth;
  std::optional<double> PhaseBandwidth;
  /// The greatest gain, dB, when it is above 0.1 dB and not at an end of the curve.
  std::optional<Reading> Peaking;
  /// Each crossing of 0 dB with its phase margin, 180 degrees plus the phase, in (-180, 180]; each
  /// crossing of an odd number of half turns with its gain margin, the gain's negative in dB.
  std::vector<Reading> PhaseMargins;
  std::vector<Reading> GainMargins;

  /// The margin nearest to 0 of all crossings; nullptr when there is none.
  const Reading* SmallestPhaseMargin() const;
  const Reading* SmallestGainMargin() const;
};

/// Reads an unwrapped curve; memory that `margins` holds is used again.
void FindMargins(std::span<const ResponsePoint> unwrapped, Margins& margins);

/// Reads what slots of an analyser hold, time and again in the same memory.
class MarginReader {
 public:
  /// Up to an octave above what the analyser measures closely; a response from elsewhere, whole.
  /// `opened` reads the open loop that belongs to a closed one.
  const Margins& Read(FrequencyAnalyser& analyser, int slot, bool opened = false);

 private:
  ResponseCurve curve_;
  Margins margins_;
};

}  // namespace torvane
