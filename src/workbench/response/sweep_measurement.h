#pragma once

#include <optional>

#include "instruments/sweep/swept_sine_analyser.h"
#include "workbench/response/response_options.h"

namespace torvane {

/// How the swept-sine analyser measures a response. A setting that is not given is its own.
struct SweepOptions {
  ResponseOptions Response;
  std::optional<double> From;  ///< Hz
  std::optional<double> To;    ///< Hz
  std::optional<int> PerDecade;
  std::optional<double> Settle;   ///< seconds
  std::optional<double> Measure;  ///< times the frequency: the periods of a point, at least one
};

/// Puts the options in force and reports what makes the measurement less trustworthy; what the
/// analyser refuses is wrong usage.
void SetUp(ZelSweptDSA& analyser, const SweepOptions& options);

/// One sweep, from Run to its last point; one that is not whole is an error.
void MeasureResponse(ZelModel& model, ZelSweptDSA& analyser, Supervisor& supervisor);

}  // namespace torvane
