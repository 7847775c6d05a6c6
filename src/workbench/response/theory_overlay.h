#pragma once

#include "workbench/response/response_options.h"

namespace torvane {

/// Lays over what the analyser is going to measure what theory says of it, from one frequency to
/// another, Hz, with the model as the options set it. Where theory says nothing it is a
/// WorkFault of WorkFault::Kind::Stopped.
void LayTheory(FrequencyAnalyser& analyser, const ResponseOptions& options, double from, double to,
               double tSample, Supervisor& supervisor);

}  // namespace torvane
