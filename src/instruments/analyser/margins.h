#pragma once

#include <optional>
#include <span>
#include <vector>

#include "instruments/analyser/response_curve.h"

namespace torvane {

/// What is read off a response. Bandwidth and peaking say how a closed loop follows its command;
/// the crossings, of an open loop, how far the closed one is from instability. All are read between
/// the points that can be trusted, interpolated on the logarithmic frequency axis.
struct Margins {
  /// A frequency and what is read there.
  struct Reading {
    double Hz = 0.0;
    double Value = 0.0;
  };

  static constexpr double BandwidthGain = -3.0;    ///< dB
  static constexpr double BandwidthPhase = -90.0;  ///< degrees

  /// Where the response first falls through BandwidthGain and through BandwidthPhase, Hz.
  std::optional<double> GainBandwidth;
  std::optional<double> PhaseBandwidth;
  /// The greatest gain, dB, when it is above 0 dB and not at an end of the curve.
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

}  // namespace torvane
