#pragma once

#include <optional>
#include <string>
#include <vector>

#include "instruments/scope/step_measures.h"
#include "study/run.h"
#include "workbench/supervisor.h"

namespace torvane {

/// One step of a command is run and how a signal follows it.
struct StepOptions {
  std::string Command;
  std::string Response;
  std::optional<double> Until;   ///< how long after the step the run ends at the latest, seconds
  std::optional<double> Window;  ///< the same however the response stands
  std::string Peak;              ///< a signal to watch; none when empty
};

/// A step in display units, a row at the end of each of the solver's steps: the last one before the
/// command's jump first. Nothing where no step came, and then why.
struct StepRun {
  std::vector<double> Times;
  std::vector<double> Command;
  std::vector<double> Response;
  double SolverStep = 0.0;
  bool SameUnit = false;
  std::optional<double> Peak;  ///< the largest magnitude of what is watched, of all rows
  std::string Reason;

  std::size_t Before = 0;  ///< the last row before the command's jump
  StepMeasures Measures;
};

/// Runs one step of the command. The generator that it comes from is held before its rising edge
/// until the response stands, jumps when its own edge is next due, in a loop that samples just
/// ahead of the nearest sample, and is held behind it until the response stands again or the window
/// is over. An overflow or an interrupt is a WorkFault of WorkFault::Kind::Stopped.
StepRun RunOneStep(const MakeModel& make, const StepOptions& options, Supervisor& supervisor);

}  // namespace torvane
