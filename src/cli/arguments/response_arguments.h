#pragma once

#include <optional>
#include <string>

#include "cli/io/table.h"
#include "workbench/response/bode_measurement.h"

namespace CLI {
class App;
}

namespace torvane::cli {

/// What is made of a measured response.
struct ResponseOutput {
  std::string Out;
  std::string Picture;
  bool Margins = false;
  std::optional<int> MarginsAs;  ///< a ReadAs
  std::string Overlay;
  std::string OverlayColumns;
  std::string OverlayUnits;
  bool Theory = false;  ///< is the overlay
  TableForm Form;
};

void AddResponseOptions(CLI::App& command, ResponseOptions& options, ResponseOutput& output);

/// How the model is excited and how often that is measured; the prefix begins the options' names.
void AddExcitationOptions(CLI::App& command, ResponseOptions& options,
                          const std::string& prefix = "--");

/// Those of the record that is taken.
void AddRecordOptions(CLI::App& command, BodeOptions& options, const std::string& prefix = "--");

/// Whether a response is measured or the output's spectrum.
void AddSpectrum(CLI::App& command, BodeOptions& options, const std::string& prefix = "--");

/// The analyser, with the overlay in its memory. Refuses before that what cannot be written.
FrequencyAnalyser& ChooseAnalyser(ZelBenchTop& bench, InstrumentKind kind,
                                  const ResponseOptions& options, const ResponseOutput& output);

}  // namespace torvane::cli
