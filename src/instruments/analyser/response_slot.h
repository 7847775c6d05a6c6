#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "instruments/analyser/response.h"
#include "instruments/analyser/trace_origin.h"

namespace torvane {

/// What an analyser knows of a measurement beside the channels' data, which give the response
/// between any two of them.
struct MeasuredRecord {
  TraceOrigin Origin;
  double AccurateUpTo = 0.0;        ///< with the sample time that was in force, Hz
  BinSpacing Bins;                  ///< of a spectrum's record
  std::vector<double> Frequencies;  ///< of the points of a sweep, Hz
  /// By bin, or point of a sweep; empty before the record is whole.
  std::vector<bool> Excited;
  /// Taken for the spectrum of the output alone.
  bool Spectrum = false;
  std::vector<std::string> Doubts;  ///< of any two channels

  bool Whole() const { return !Excited.empty(); }
  /// It tells how one channel follows another. What was recorded without excitation, for a spectrum
  /// under a generator or at no amplitude, does not.
  bool TellsResponse() const {
    return !Spectrum && std::ranges::find(Excited, true) != Excited.end();
  }
};

/// The current measurement or a memory: a response with what belongs to it, and whether it is to be
/// seen.
struct ResponseSlot {
  bool Enabled = false;  ///< there has been something to show
  bool Shown = false;
  /// Measured with a set-up that is no longer in force; undoing that change takes it up again.
  bool Dropped = false;
  MeasuredRecord Record;
  Response Held;                 ///< empty while there is none
  std::optional<Response> Seen;  ///< what the view makes of it, where it makes something

  const Response& AsSeen() const { return Seen ? *Seen : Held; }
};

}  // namespace torvane
