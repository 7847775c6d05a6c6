#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "instruments/analyser/level_crossings.h"
#include "instruments/analyser/read_as.h"

namespace torvane {

class FrequencyAnalyser;

/// What is read off a response, from the points that can be trusted: of a closed one bandwidth and
/// peaking, which say how it follows its command; of an open one the crossings, which say how far
/// the closed loop is from instability. Between points the response's complex logarithm is
/// interpolated.
struct Margins {
  /// A frequency and what is read there.
  struct Reading {
    double Hz = 0.0;
    double Value = 0.0;
  };

  static constexpr double BandwidthGain = -3.0;    ///< dB
  static constexpr double BandwidthPhase = -90.0;  ///< degrees
  static constexpr std::size_t MostCrossings = 8;  ///< of each kind; more are noise

  bool Closed = false;
  /// The gain with which the response begins, dB: the middle one of its lowest points.
  double Begin = 0.0;

  /// Where the response first falls through BandwidthGain and through BandwidthPhase, Hz.
  std::optional<double> GainBandwidth;
  std::optional<double> PhaseBandwidth;
  /// The greatest gain, dB, when it is above 0.1 dB and not at an end of the curve.
  std::optional<Reading> Peaking;
  bool NeverPeaks = false;  ///< the gain stays below 0.1 dB
  /// Each crossing of 0 dB with its phase margin, 180 degrees plus the phase, in (-180, 180]; each
  /// crossing of an odd number of half turns with its gain margin, the gain's negative in dB. Of
  /// more than MostCrossings the smallest margins.
  std::vector<Reading> PhaseMargins;
  std::vector<Reading> GainMargins;
  bool NeverTurns = false;  ///< of an open response: its phase crosses no odd number of half turns
  /// Of an open response the sensitivity peak: the greatest of 1 / |1 + response|, the reciprocal
  /// of the least distance from -1. None when that lies at an end, where it may not be the
  /// greatest, or the response scatters there.
  std::optional<Reading> Sensitivity;
  /// How much the response scatters where it is read, of what is borne at most; above 1 something
  /// is missing for it.
  double Scatter = 0.0;
  /// Why what such a response is read for is not there, a clause each.
  std::vector<std::string> Missing;

  bool Empty() const {
    return !GainBandwidth && !PhaseBandwidth && !Peaking && PhaseMargins.empty() &&
           GainMargins.empty();
  }
  /// The margin nearest to 0 of all crossings; nullptr when there is none.
  const Reading* SmallestPhaseMargin() const;
  const Reading* SmallestGainMargin() const;
  /// The highest frequency at which something was read, Hz; 0 when nothing was.
  double HighestHz() const;
};

/// Reads an unwrapped curve, which ReadAs::Unity has opened already.
Margins FindMargins(std::span<const ResponsePoint> unwrapped, ReadAs as);

/// The one reader of what slots of an analyser hold.
class MarginReader {
 public:
  /// Up to an octave above what the response's sample time measures closely, or to `highest` Hz;
  /// one from a file whole. A response between the signals of the model's loop is an open one to
  /// ReadAs::Auto.
  const Margins& Read(const FrequencyAnalyser& analyser, int slot, ReadAs as,
                      std::optional<double> highest = std::nullopt);
  /// As the analyser's view has it.
  const Margins& Read(const FrequencyAnalyser& analyser, int slot);

 private:
  ResponseCurve curve_;
  Margins margins_;
};

}  // namespace torvane
