#pragma once

#include <optional>
#include <string>

#include "instruments/analyser/analyser.h"
#include "workbench/model/model_options.h"

namespace torvane {

/// What measurements of a frequency response have in common. A setting that is not given
/// is the model's analyser's own.
struct ResponseOptions {
  ModelOptions Model;
  std::string Setup;  ///< a pair of signals that the model offers, in place of Input and Output
  std::string Input;
  std::string Output;
  std::optional<double> TSample;
  std::optional<double> Amplitude;
  std::optional<double> Offset;
  std::optional<int> Average;
};

/// The memory that what is laid over a measured response stands in.
inline constexpr int OverlaySlot = 1;

/// A model of the catalogue needs input and output to be named, or it is wrong usage; a file has
/// chosen them.
void CheckChannels(const ResponseOptions& options);

/// The model's first analyser of that kind with its channels chosen; a model without one, or an
/// unknown signal or pair, is wrong usage.
FrequencyAnalyser& ChooseAnalyser(ZelBenchTop& bench, InstrumentKind kind,
                                  const ResponseOptions& options);

/// What is to be said of a set-up: a refusal is wrong usage, a warning is reported.
void Heed(const SetupFinding& finding);

/// Puts the options that both analysers take in force and reports what makes the measurement less
/// trustworthy.
void ApplyOptions(FrequencyAnalyser& analyser, const ResponseOptions& options);

}  // namespace torvane
