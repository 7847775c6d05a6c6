#pragma once

#include <optional>
#include <string>

#include "instruments/fft/fft_analyser.h"
#include "workbench/response/response_options.h"

namespace torvane {

/// How the FFT analyser measures a response. A setting that is not given is its own.
struct BodeOptions {
  ResponseOptions Response;
  std::optional<int> Order;
  std::optional<double> StartDelay;
  std::optional<double> EndDelay;
  std::optional<bool> Spectrum;
  /// Keep off a sampled loop's own samples; without it, unless a start delay is given.
  bool BetweenSamples = false;
};

/// Puts the options in force and reports what makes the measurement less trustworthy; what the
/// analyser refuses is wrong usage.
void SetUp(ZelXfer& xfer, const BodeOptions& options);

/// Of a sample time at which margins of the model's loop, if it samples, are not those of the loop:
/// images of its samples come in, and at an even multiple half a sample of delay.
std::optional<std::string> LoopSampleWarning(const ZelXfer& xfer);

/// A measurement from Run to Complete; one that is not whole is an error.
void MeasureResponse(ZelModel& model, ZelXfer& xfer, Supervisor& supervisor);

}  // namespace torvane
