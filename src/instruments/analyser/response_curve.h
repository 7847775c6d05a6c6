#pragma once

#include <span>
#include <vector>

namespace torvane {

class FrequencyAnalyser;

/// One frequency of a measured response.
struct ResponsePoint {
  double Hz = 0.0;
  double Gain = 0.0;   ///< dB
  double Phase = 0.0;  ///< degrees
  /// The share of input and output that the excitation explains, 0 to 1; 1 where it was not
  /// measured.
  double Coherence = 1.0;
  /// The excitation had power here; elsewhere gain and phase are noise.
  bool Excited = true;

  /// Measured well enough to be read off.
  bool Trusted() const { return Excited && Coherence >= 0.5; }
};

/// A response in order of frequency, without the bin at 0 Hz.
using ResponseCurve = std::vector<ResponsePoint>;

/// What a slot of an analyser holds as measured, phases in (-270, 90]; empty without data. The
/// curve's memory is used again, so reading one that grows no longer allocates nothing.
void ReadCurve(const FrequencyAnalyser& analyser, int slot, ResponseCurve& curve);

/// Adds whole turns, so that the phase never moves by more than half a turn between two points
/// that follow each other and can be trusted. The first one stays.
void UnwrapPhase(std::span<ResponsePoint> curve);

/// The open loop L = G / (1 - G) of a loop with unity feedback whose closed response is G. Phases
/// come back in (-270, 90]. Above 60 dB it cannot be trusted.
void OpenFromClosed(std::span<ResponsePoint> curve);

/// Group delay -d(phase) / d(360 f) of an unwrapped curve at each of its points, seconds: the slope
/// between the neighbours of a point, to one side at the ends. Fewer than two points have no delay.
void GroupDelay(std::span<const ResponsePoint> unwrapped, std::vector<double>& seconds);

}  // namespace torvane
