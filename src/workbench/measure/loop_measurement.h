#pragma once

#include <string>

#include "study/run.h"
#include "workbench/response/bode_measurement.h"

namespace torvane {

/// Which frequency responses of a model are measured: from a command to what follows it, and its
/// open loop. What is not given of order, sample time, end delay and amplitude is not the
/// analyser's, but chosen for the model's loop.
struct LoopOptions {
  BodeOptions Bode;  ///< its input is the command, its output the response
  std::string Loop;  ///< IN:OUT, the open loop's pair in place of the model's
};

/// Wrong usage if the model has no FFT analyser, the analyser does not take its settings, or the
/// loop is none of the model's. Says how the loop is measured where that is not plain.
void CheckLoop(ZelModel& model, const LoopOptions& options, Supervisor& supervisor);

/// Says how the model's own loop is read where that is not plain.
void NoteLoop(const ZelModel& model);

/// Reads bandwidth and peaking off the response to the command, and margins off the open loop, each
/// measured in a model of its own whose generators rest. An overflow or a record that is not whole
/// is a WorkFault of WorkFault::Kind::Stopped.
void ReadLoop(const MakeModel& make, const LoopOptions& options, Supervisor& supervisor,
              RunReadings& readings);

}  // namespace torvane
