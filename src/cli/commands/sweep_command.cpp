#include <CLI/CLI.hpp>
#include <cmath>

#include "cli/arguments/instrument_arguments.h"
#include "cli/arguments/response_arguments.h"
#include "cli/commands/commands.h"
#include "cli/io/console.h"
#include "cli/io/pictures.h"
#include "cli/io/result_file.h"
#include "cli/io/table.h"
#include "cli/response/response_output.h"
#include "core/csv.h"
#include "core/text.h"
#include "workbench/response/sweep_measurement.h"
#include "workbench/response/theory_overlay.h"
#include "workbench/work_fault.h"

namespace torvane::cli {
namespace {

struct SweepCommand {
  SweepOptions Sweep;
  ResponseOutput Output;
};

void WritePoints(const ZelSweptDSA& analyser, const TableForm& form, ResultFile& file) {
  std::vector<Column> columns{{"Frequency", "Hz"}, {"Gain", "dB"}, {"Phase", "deg"}};
  AddMoreColumns(analyser, columns);
  TableWriter table(columns, form, file);
  for (int point = 0; point < analyser.PointCount(); ++point) {
    const double hz = analyser.PointFrequency(0, point);
    std::vector<std::string> line{FormatShortest(hz),
                                  FormatShortest(analyser.ResponseGain(0, point)),
                                  FormatShortest(analyser.ResponsePhase(0, point))};
    Append(line, MoreFields(analyser, point, hz));
    table.Write(line);
  }
  table.End();
  file.Close();
}

void MeasureSweep(const SweepCommand& command, Console& console) {
  const SweepOptions& options = command.Sweep;
  const ResponseOutput& output = command.Output;
  CheckChannels(options.Response);
  const auto model = OpenModel(options.Response.Model, console);
  auto& analyser = dynamic_cast<ZelSweptDSA&>(
      ChooseAnalyser(model->Bench(), InstrumentKind::SweptSine, options.Response, output));
  console.ApplySettings([&] { SetUp(analyser, options); });
  if (output.Theory) {
    // The last point is the first at or above the highest frequency.
    const double last = analyser.FreqMax() * std::pow(10.0, 1.0 / analyser.StepsPerDecade());
    LayTheory(analyser, options.Response, analyser.FreqMin(), last, analyser.TSample(), console);
  }
  ResultFile file(output.Out);
  console.ShowRuns();
  MeasureResponse(*model, analyser, console);
  TellDoubts(analyser, output.Form, file);
  if (WritesPoints(output)) WritePoints(analyser, output.Form, file);
  if (output.Margins) PrintMargins(analyser, output);
  if (!output.Picture.empty()) WritePicture(analyser, output.Picture);
}

}  // namespace

void AddSweepCommand(CLI::App& app, Console& console) {
  CLI::App* const command = app.add_subcommand(
      "sweep", "Measure a frequency response with the swept-sine analyser, as CSV");
  const auto options = std::make_shared<SweepCommand>();
  AddResponseOptions(*command, options->Sweep.Response, options->Output);
  AddSweepOptions(*command, options->Sweep);
  command->callback([options, &console] { MeasureSweep(*options, console); });
}

}  // namespace torvane::cli
