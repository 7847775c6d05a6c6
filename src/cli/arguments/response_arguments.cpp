#include "cli/arguments/response_arguments.h"

#include <CLI/CLI.hpp>

#include "cli/arguments/model_arguments.h"
#include "cli/io/number_options.h"
#include "cli/io/pictures.h"
#include "cli/io/result_file.h"
#include "instruments/analyser/read_as.h"
#include "workbench/response/file_overlay.h"

namespace torvane::cli {

void AddResponseOptions(CLI::App& command, ResponseOptions& options, ResponseOutput& output) {
  AddModelOptions(command, options.Model);
  CLI::Option* const input =
      command
          .add_option("--input", options.Input,
                      "Signal that the response is measured against; needed unless MODEL is a file")
          ->type_name("SIGNAL");
  CLI::Option* const out =
      command
          .add_option("--output", options.Output,
                      "Signal whose response is measured; needed unless MODEL is a file")
          ->type_name("SIGNAL");
  command
      .add_option("--setup", options.Setup,
                  "Both, by the name of a pair that the model offers; \"pairs\" lists them")
      ->type_name("PAIR")
      ->excludes(input)
      ->excludes(out);
  AddExcitationOptions(command, options);
  command.add_option("--out", output.Out, "File to write; standard output without it")
      ->type_name("FILE");
  command.add_option("--picture", output.Picture, "Draw gain and phase into this file as well")
      ->type_name("FILE.png|svg|pdf");
  CLI::Option* const margins =
      command.add_flag("--margins", output.Margins,
                       "Print bandwidth, peaking, gain and phase margins; the points then go to "
                       "--out only");
  AddChoice(command, "--read-as", output.MarginsAs, {ReadAsNames.begin(), ReadAsNames.end()},
            "What --margins takes the response for: an open loop, a closed one, a closed one whose "
            "feedback is its output (margins are then computed), or what it looks like")
      ->needs(margins);
  CLI::Option* const overlay =
      command
          .add_option("--overlay", output.Overlay,
                      "Lay the response of this file, from a bench or --out, over the measured one")
          ->type_name("FILE.csv");
  command
      .add_flag("--theory", output.Theory,
                "Lay what the model's linearised equations say over the measured response instead")
      ->excludes(overlay);
  command
      .add_option("--overlay-columns", output.OverlayColumns,
                  "Which of its columns are frequency, gain and phase, by caption or number")
      ->type_name("F,G,P")
      ->needs(overlay);
  command
      .add_option("--overlay-units", output.OverlayUnits,
                  "Their units where the file does not say them: Hz, kHz, MHz or rad/s, dB or abs, "
                  "deg or rad")
      ->type_name("U,U,U")
      ->needs(overlay);
  AddTableForm(command, output.Form);
}

void AddExcitationOptions(CLI::App& command, ResponseOptions& options, const std::string& prefix) {
  AddNumber(command, prefix + "tsample", options.TSample, NumberRange::Positive,
            "The analyser's sample time, seconds");
  AddNumber(command, prefix + "amplitude", options.Amplitude, NumberRange::NotNegative,
            "Amplitude of the excitation, in the command's units");
  AddNumber(command, prefix + "offset", options.Offset, NumberRange::Any, "Mean of the excitation");
  AddInteger(command, prefix + "average", options.Average,
             "Measurements to average, with the coherence; one without it");
}

void AddRecordOptions(CLI::App& command, BodeOptions& options, const std::string& prefix) {
  AddInteger(command, prefix + "order", options.Order, "Samples of the record, as a power of two");
  AddNumber(command, prefix + "start-delay", options.StartDelay, NumberRange::NotNegative,
            "Time before the first sample, the start zero time, seconds");
  AddNumber(command, prefix + "end-delay", options.EndDelay, NumberRange::NotNegative,
            "Last part of the record without excitation, the end zero time, seconds");
}

void AddSpectrum(CLI::App& command, BodeOptions& options, const std::string& prefix) {
  command.add_flag_function(
      prefix + "spectrum,!" + prefix + "no-spectrum",
      [&options](std::int64_t count) { options.Spectrum = count > 0; },
      "Give the output's spectrum alone, under a triangular window, or the response");
}

FrequencyAnalyser& ChooseAnalyser(ZelBenchTop& bench, InstrumentKind kind,
                                  const ResponseOptions& options, const ResponseOutput& output) {
  CheckPictureFile(output.Picture);
  CheckOutputs(output.Out, output.Picture, output.Overlay);
  FrequencyAnalyser& analyser = ChooseAnalyser(bench, kind, options);
  if (!output.Overlay.empty()) {
    LayFile(analyser, output.Overlay, output.OverlayColumns, output.OverlayUnits);
  }
  return analyser;
}

}  // namespace torvane::cli
