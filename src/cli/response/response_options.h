#pragma once

#include <optional>
#include <string>

#include "cli/model/model_options.h"
#include "instruments/analyser/analyser.h"

namespace torvane::cli {

/// What the commands that measure a frequency response have in common. A setting that is not given
/// is the model's analyser's own.
struct ResponseOptions {
  ModelOptions Model;
  std::string Input;
  std::string Output;
  std::optional<double> TSample;
  std::optional<double> Amplitude;
  std::optional<double> Offset;
  std::string Out;
  std::string Picture;
  bool Margins = false;
  std::optional<int> MarginsAs;  ///< a ReadAs
  std::optional<int> Average;
  std::string Overlay;
  std::string OverlayColumns;
  std::string OverlayUnits;
  bool Theory = false;  ///< is the overlay
};

/// The memory that an overlay is laid into.
inline constexpr int OverlaySlot = 1;

void AddResponseOptions(CLI::App& command, ResponseOptions& options);

/// How the model is excited and how often that is measured.
void AddExcitationOptions(CLI::App& command, ResponseOptions& options);

/// A model of the catalogue needs input and output to be named, or it is wrong usage; a file has
/// chosen them.
void CheckChannels(const ResponseOptions& options);

/// The model's first analyser of that kind with its channels chosen and the overlay in its memory;
/// a model without one, or an unknown signal, is wrong usage.
FrequencyAnalyser& ChooseAnalyser(ZelBenchTop& bench, InstrumentKind kind,
                                  const ResponseOptions& options);

/// What is to be said of a set-up: a refusal is wrong usage, a warning is reported.
void Heed(const SetupFinding& finding);

/// Puts the options that both analysers take in force and reports what makes the measurement less
/// trustworthy.
void ApplyOptions(FrequencyAnalyser& analyser, const ResponseOptions& options);

}  // namespace torvane::cli
