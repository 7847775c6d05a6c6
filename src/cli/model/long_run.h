#pragma once

#include <chrono>

#include "cli/io/console.h"
#include "cli/io/interrupt.h"
#include "core/model.h"

namespace torvane::cli {

/// Runs a model in simulated time for a command. An interrupt or an overflow ends the command with
/// ExitCode::Stopped; progress is shown when somebody can see it.
class LongRun {
 public:
  /// `until` is when the run is expected to end, seconds.
  LongRun(ZelModel& model, Console& console, double until, bool showProgress);
  ~LongRun() { console_.ShowProgress(""); }
  LongRun(const LongRun&) = delete;
  LongRun& operator=(const LongRun&) = delete;

  double Time() const { return model_.Time(); }

  /// Steps to the first step boundary at or past the time; no instrument is serviced.
  void StepTo(double time);
  /// Service one instrument, or all, at the present time; false when one wants the run to stop.
  bool Service(Instrument& instrument);
  bool ServiceInstruments();

  /// A chunk of the run loop, but not beyond the given time; false when an instrument wants the run
  /// to stop.
  bool RunChunk(double until);

 private:
  template <class Part>
  auto Guarded(Part part);
  void CheckIn();
  void ShowProgress();

  ZelModel& model_;
  Console& console_;
  double until_;
  bool showProgress_;
  InterruptGuard guard_;
  std::chrono::steady_clock::time_point nextProgress_;
};

}  // namespace torvane::cli
