#pragma once

#include <string>
#include <vector>

#include "cli/bode_measurement.h"
#include "cli/make_model.h"

namespace torvane::cli {

std::vector<std::string> LoopCaptions();

/// Wrong usage if the model has no FFT analyser or the analyser does not take its settings.
void CheckLoop(ZelModel& model, const BodeOptions& options, Console& console);

/// Bandwidth, peaking and margins by caption, read off a response that is measured in a model of
/// its own; what cannot be read is empty. An overflow or a record that is not whole is a
/// CommandError of ExitCode::Stopped.
std::vector<std::string> MeasureLoop(const MakeModel& make, const BodeOptions& options,
                                     Console& console, bool showProgress);

}  // namespace torvane::cli
