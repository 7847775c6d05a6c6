#pragma once

#include <limits>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "instruments/analyser/response_curve.h"
#include "instruments/analyser/response_view.h"

namespace torvane {

/// Where a response comes from.
enum class ResponseSource { Measured, Loaded, Computed };

/// What is read of a response: dB, degrees, seconds and a share.
enum class ResponseQuantity { Gain, Phase, Delay, Coherence };

/// The frequencies of a record's spectrum: bin k lies at k / (Length TSample) Hz. Without a length
/// points may have any distances.
struct BinSpacing {
  double TSample = 0.0;  ///< seconds
  int Length = 0;        ///< samples of the record

  bool operator==(const BinSpacing&) const = default;
};

/// What a measured response is of, and how far it goes; one from elsewhere does not say.
struct ResponseSubject {
  std::string Input;  ///< names of the signals
  std::string Output;
  /// Up to where the sample time that it was measured with tells gain and phase closely, Hz.
  double AccurateUpTo = std::numeric_limits<double>::infinity();
  /// Degrees that are added to its phases for the eye; margins are read without them.
  double PhaseAdd = 0.0;
};

/// A frequency response: made whole, and only read from then on. An index counts its points; those
/// of a spectrum are its bins, of which the one at 0 Hz is no point of the response.
class Response {
 public:
  /// No response.
  Response() = default;
  /// Points in rising order of frequency. The name says where one comes from that was not measured.
  Response(ResponseSource source, std::string name, ResponseCurve points, bool hasCoherence,
           const BinSpacing& bins = {});

  const ResponseSubject& Subject() const { return subject_; }
  void SetSubject(ResponseSubject subject) { subject_ = std::move(subject); }

  /// What makes it doubtful, a sentence each; it stays with the response wherever it goes.
  const std::vector<std::string>& Doubts() const { return doubts_; }
  void Doubt(std::vector<std::string> doubts) { doubts_ = std::move(doubts); }

  ResponseSource Source() const { return source_; }
  const std::string& Name() const { return name_; }
  bool Empty() const { return points_.empty(); }

  /// The indices of its points.
  int First() const { return bins_.Length > 0 ? 1 : 0; }
  int End() const { return static_cast<int>(points_.size()); }
  /// nullptr where there is no such point or bin.
  const ResponsePoint* At(int index) const;
  /// The points, in order.
  std::span<const ResponsePoint> Curve() const;
  /// The share that the excitation explains was measured.
  bool HasCoherence() const { return hasCoherence_; }

  /// Its lowest and highest frequency, Hz.
  double LowestHz() const;
  double HighestHz() const;
  /// Position of a frequency among the indices, with its fraction: linear between bins, logarithmic
  /// between points of other distances; negative outside them.
  double IndexAt(double hz) const;

  /// One reading at an index; nothing outside the points, or where the quantity is not known.
  std::optional<double> ValueOf(ResponseQuantity quantity, int index) const;
  /// The same at a frequency, between two points in proportion. There is no phase between two
  /// points on either side of a wrap.
  std::optional<double> Read(ResponseQuantity quantity, double hz) const;

  /// The same as one from elsewhere, whose name says where from: its points, what it is of and what
  /// makes it doubtful.
  Response Loaded(std::string name) const;

  /// What a view shows of it: of the open loop, unwrapped, with its group delay.
  Response Seen(const ResponseView& view) const;

  /// Adds so many turns to its phases.
  void TurnBy(double turns);

 private:
  std::span<ResponsePoint> Curve();

  ResponseSource source_ = ResponseSource::Measured;
  std::string name_;
  ResponseSubject subject_;
  std::vector<std::string> doubts_;
  ResponseCurve points_;
  std::vector<double> delays_;  ///< of the curve, seconds; while a view shows them
  bool hasCoherence_ = false;
  BinSpacing bins_;
};

}  // namespace torvane
