#include "cli/response/response_options.h"

#include <CLI/CLI.hpp>
#include <utility>

#include "cli/command_error.h"
#include "cli/io/number_options.h"
#include "cli/io/pictures.h"
#include "cli/io/result_file.h"
#include "core/messages.h"
#include "instruments/analyser/read_as.h"
#include "instruments/analyser/response_csv.h"

namespace torvane::cli {

namespace {

ResponseHints Hints(const ResponseOptions& options) {
  const auto hints = ParseResponseHints(options.OverlayColumns, options.OverlayUnits);
  if (hints) return *hints;
  throw UsageError(
      "--overlay-columns needs three captions or numbers, --overlay-units three units "
      "(Hz, kHz, MHz or rad/s, dB or abs, deg or rad)");
}

void LoadOverlay(FrequencyAnalyser& analyser, const ResponseOptions& options) {
  ResponseText text = ReadResponseFile(options.Overlay, Hints(options));
  if (!text.Fault.empty()) {
    const char* const help = text.UnitsMissing ? "; --overlay-units tells, as in Hz,dB,deg" : "";
    throw FileError("--overlay " + text.Fault + help);
  }
  if (!text.Note.empty()) Note("--overlay \"" + options.Overlay + "\": " + text.Note);
  if (text.Responses.size() > 1) {
    Note("--overlay \"" + options.Overlay + "\": the first of " +
         std::to_string(text.Responses.size()) + " responses is taken; --overlay-columns chooses");
  }
  analyser.LoadMemory(OverlaySlot, std::move(text.Responses.front().Curve), options.Overlay);
}

}  // namespace

void AddResponseOptions(CLI::App& command, ResponseOptions& options) {
  AddModelOptions(command, options.Model);
  command
      .add_option("--input", options.Input,
                  "Signal that the response is measured against; needed unless MODEL is a file")
      ->type_name("A");
  command
      .add_option("--output", options.Output,
                  "Signal whose response is measured; needed unless MODEL is a file")
      ->type_name("B");
  AddExcitationOptions(command, options);
  command.add_option("--out", options.Out, "File to write; standard output without it")
      ->type_name("FILE");
  command.add_option("--picture", options.Picture, "Draw gain and phase into this file as well")
      ->type_name("FILE.png|svg|pdf");
  CLI::Option* const margins =
      command.add_flag("--margins", options.Margins,
                       "Print bandwidth, peaking, gain and phase margins; the points then go to "
                       "--out only");
  AddChoice(command, "--read-as", options.MarginsAs, {ReadAsNames.begin(), ReadAsNames.end()},
            "What --margins takes the response for: an open loop, a closed one, a closed one whose "
            "feedback is its output (margins are then computed), or what it looks like")
      ->needs(margins);
  CLI::Option* const overlay =
      command
          .add_option("--overlay", options.Overlay,
                      "Lay the response of this file, from a bench or --out, over the measured one")
          ->type_name("FILE.csv");
  command
      .add_flag("--theory", options.Theory,
                "Lay what the model's linearised equations say over the measured response instead")
      ->excludes(overlay);
  command
      .add_option("--overlay-columns", options.OverlayColumns,
                  "Which of its columns are frequency, gain and phase, by caption or number")
      ->type_name("F,G,P")
      ->needs(overlay);
  command
      .add_option("--overlay-units", options.OverlayUnits,
                  "Their units where the file does not say them: Hz, kHz, MHz or rad/s, dB or abs, "
                  "deg or rad")
      ->type_name("U,U,U")
      ->needs(overlay);
}

void AddExcitationOptions(CLI::App& command, ResponseOptions& options) {
  AddNumber(command, "--tsample", options.TSample, NumberRange::Positive,
            "The analyser's sample time, seconds");
  AddNumber(command, "--amplitude", options.Amplitude, NumberRange::NotNegative,
            "Amplitude of the excitation, in the command's units");
  AddNumber(command, "--offset", options.Offset, NumberRange::Any, "Mean of the excitation");
  AddInteger(command, "--average", options.Average,
             "Measurements to average, with the coherence; one without it");
}

void CheckChannels(const ResponseOptions& options) {
  if (NamesModelFile(options.Model.Model)) return;
  if (options.Input.empty()) throw UsageError("--input is required");
  if (options.Output.empty()) throw UsageError("--output is required");
}

FrequencyAnalyser& ChooseAnalyser(ZelBenchTop& bench, InstrumentKind kind,
                                  const ResponseOptions& options) {
  CheckPictureFile(options.Picture);
  CheckOutputs(options.Out, options.Picture, options.Overlay);
  const auto& analysers = bench.Instruments(kind);
  if (analysers.empty()) throw UsageError("the model has no such analyser");
  auto& analyser = dynamic_cast<FrequencyAnalyser&>(*analysers.front());
  if (!options.Input.empty()) analyser.SetInput(NamedSignal(bench, options.Input).Name());
  if (!options.Output.empty()) analyser.SetOutput(NamedSignal(bench, options.Output).Name());
  if (!options.Overlay.empty()) LoadOverlay(analyser, options);
  return analyser;
}

void Heed(const SetupFinding& finding) {
  if (finding.What == SetupFinding::Kind::Refusal) {
    const std::string fits = finding.WouldFit.empty() ? "" : " (fits: " + finding.WouldFit + ")";
    throw UsageError(finding.Text + fits);
  }
  if (finding.What == SetupFinding::Kind::Warning) Warning(finding.Text);
}

void ApplyOptions(FrequencyAnalyser& analyser, const ResponseOptions& options) {
  if (options.Average) analyser.SetAverages(*options.Average);
  if (options.Margins && analyser.OutputOnly()) {
    throw UsageError("--margins needs a response; --no-spectrum measures one");
  }
  for (const std::string& warning : analyser.Warnings()) Warning(warning);
}

}  // namespace torvane::cli
