#pragma once

#include <limits>
#include <memory>

#include "core/model.h"
#include "workbench/supervisor.h"

namespace torvane {

/// Runs a model in simulated time for a supervisor, whose watch may end it. An overflow ends it
/// with WorkFault::Kind::Stopped.
class LongRun {
 public:
  /// `until` is when the run is expected to end, seconds.
  LongRun(ZelModel& model, Supervisor& supervisor, double until);

  double Time() const { return model_.Time(); }

  /// Steps to the first step boundary at or past the time; no instrument is serviced.
  void StepTo(double time);
  /// Service one instrument, or all, at the present time; false when one wants the run to stop.
  bool Service(Instrument& instrument, double largest = std::numeric_limits<float>::max());
  bool ServiceInstruments();

  /// Runs to the first step boundary at or past the time and serves an instrument whenever it asks
  /// for it, on the way from a tape where that is the same; nobody else is served. What it sees may
  /// be as large as that.
  void Serve(Instrument& instrument, double until,
             double largest = std::numeric_limits<float>::max());

  /// A chunk of the run loop, but not beyond the given time; false when an instrument wants the run
  /// to stop.
  bool RunChunk(double until);

 private:
  template <class Part>
  auto Guarded(Part part);

  ZelModel& model_;
  std::unique_ptr<RunWatch> watch_;
};

}  // namespace torvane
