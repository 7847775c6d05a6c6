#pragma once

#include <optional>
#include <vector>

#include "instruments/analyser/response.h"
#include "instruments/analyser/trace_origin.h"

namespace torvane {

/// What an analyser knows of a measurement beside the channels' data, which give the response
/// between any two of them.
struct MeasuredRecord {
  TraceOrigin Origin;
  std::vector<double> Frequencies;  ///< of the points of a sweep, Hz
  std::vector<bool> Excited;        ///< by bin; a sweep excites at every point
};

/// The current measurement or a memory: a response with what belongs to it, and whether it is to be
/// seen.
struct ResponseSlot {
  bool Enabled = false;  ///< there has been something to show
  bool Shown = false;
  /// Measured with a set-up that is no longer in force.
  bool Dropped = false;
  MeasuredRecord Record;
  Response Held;                 ///< empty while there is none
  std::optional<Response> Seen;  ///< what the view makes of it, where it makes something

  const Response& AsSeen() const { return Seen ? *Seen : Held; }
};

}  // namespace torvane
