#include <CLI/CLI.hpp>
#include <cmath>

#include "cli/arguments/response_arguments.h"
#include "cli/commands/commands.h"
#include "cli/io/console.h"
#include "cli/io/pictures.h"
#include "cli/io/result_file.h"
#include "cli/io/table.h"
#include "cli/response/response_output.h"
#include "core/csv.h"
#include "core/messages.h"
#include "core/text.h"
#include "workbench/response/bode_measurement.h"
#include "workbench/response/theory_overlay.h"
#include "workbench/work_fault.h"

namespace torvane::cli {
namespace {

void WriteBins(const ZelXfer& xfer, const TableForm& form, ResultFile& file) {
  const bool averaged = xfer.HasCoherence(0);
  std::vector<Column> columns{{"Bin", ""}, {"Frequency", "Hz"}, {"Gain", "dB"}, {"Phase", "deg"}};
  if (averaged) columns.push_back({"Excited", ""});
  AddMoreColumns(xfer, columns);
  TableWriter table(columns, form, file);
  for (int bin = 0; bin <= xfer.Length() / 2; ++bin) {
    const double hz = xfer.BinFrequency(bin);
    std::vector<std::string> line{std::to_string(bin), FormatShortest(hz),
                                  FormatShortest(xfer.ResponseGain(0, bin)),
                                  FormatShortest(xfer.ResponsePhase(0, bin))};
    if (averaged) line.emplace_back(xfer.ResponseAt(0).At(bin)->Excited ? "1" : "0");
    Append(line, MoreFields(xfer, bin, hz));
    table.Write(line);
  }
  table.End();
  file.Close();
}

struct BodeCommand {
  BodeOptions Bode;
  ResponseOutput Output;
};

void MeasureBode(const BodeCommand& command, Console& console) {
  const BodeOptions& options = command.Bode;
  const ResponseOutput& output = command.Output;
  CheckChannels(options.Response);
  const auto model = OpenModel(options.Response.Model, console);
  auto& xfer = dynamic_cast<ZelXfer&>(
      ChooseAnalyser(model->Bench(), InstrumentKind::FftAnalyser, options.Response, output));
  xfer.SetAtOnce(options.StartDelay && !options.BetweenSamples);
  if (output.Margins && options.Spectrum.value_or(xfer.Spectrum())) {
    throw UsageError("--margins needs a response; --no-spectrum measures one");
  }
  console.ApplySettings([&] { SetUp(xfer, options); });
  const auto warning = LoopSampleWarning(xfer);
  if (warning && output.Margins) Warning(*warning);
  if (output.Theory) {
    const double half = 0.5 / xfer.TSample();
    LayTheory(xfer, options.Response, std::ldexp(half, 1 - xfer.Order()), half, xfer.TSample(),
              console);
  }
  ResultFile file(output.Out);
  console.ShowRuns();
  MeasureResponse(*model, xfer, console);
  TellDoubts(xfer, output.Form, file);
  if (WritesPoints(output)) WriteBins(xfer, output.Form, file);
  if (output.Margins) PrintMargins(xfer, output);
  if (output.Picture.empty()) return;
  // A file's range of frequencies is part of its set-up.
  if (!NamesModelFile(options.Response.Model.Model)) xfer.AutoRange();
  WritePicture(xfer, output.Picture);
}

}  // namespace

void AddBodeCommand(CLI::App& app, Console& console) {
  CLI::App* const command =
      app.add_subcommand("bode", "Measure a frequency response with the FFT analyser, as CSV");
  const auto options = std::make_shared<BodeCommand>();
  AddResponseOptions(*command, options->Bode.Response, options->Output);
  AddRecordOptions(*command, options->Bode);
  AddSpectrum(*command, options->Bode);
  command->add_flag("--between-samples", options->Bode.BetweenSamples,
                    "Begin between two samples of the model's loop with a start delay, too");
  command->callback([options, &console] { MeasureBode(*options, console); });
}

}  // namespace torvane::cli
