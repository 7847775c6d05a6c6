#include <CLI/CLI.hpp>

#include "cli/arguments/instrument_arguments.h"
#include "cli/arguments/model_arguments.h"
#include "cli/commands/commands.h"
#include "cli/io/console.h"
#include "cli/io/number_options.h"
#include "cli/io/result_file.h"
#include "cli/io/table.h"
#include "core/text.h"
#include "workbench/meter_reading.h"
#include "workbench/model/model_options.h"
#include "workbench/work_fault.h"

namespace torvane::cli {
namespace {

// As one reads it: the value and, of a harmonic, its angle.
void WriteReading(const ZelMeter& meter, const TableForm& form, ResultFile& output) {
  std::vector<std::string> fields{FormatShortest(meter.Value())};
  if (meter.Measurement() == MeterKind::Harmonic)
    fields.push_back(FormatShortest(meter.AngleDeg()));
  if (form.Format) {
    std::vector<std::string> captions{"Value", "Angle"};
    captions.resize(fields.size());
    TableWriter table(Columns(captions), form, output);
    table.Write(fields);
  } else {
    output.Write(fields.front() + (fields.size() > 1 ? " " + fields.back() : "") + "\n");
  }
}

void ReadMeter(const MeterOptions& options, const TableForm& form, Console& console) {
  const auto model = OpenModel(options.Model, console);
  ZelMeter& meter = SetUpMeter(*model, options, console);
  ResultFile output("");
  console.ShowRuns();
  Measure(*model, meter, options.Until, console);
  WriteReading(meter, form, output);
  output.Close();
}

}  // namespace

void AddMeterCommand(CLI::App& app, Console& console) {
  CLI::App* const command = app.add_subcommand(
      "meter", "Measure one signal: prints the value and, for a harmonic, its angle in degrees");
  const auto options = std::make_shared<MeterOptions>();
  AddModelOptions(*command, options->Model);
  AddMeterOptions(*command, *options);
  AddNumber(*command, "--until", options->Until, NumberRange::Positive,
            "Simulated time at which to read the meter, seconds")
      ->required();
  const auto form = std::make_shared<TableForm>();
  AddFormat(*command, *form);
  command->callback([options, form, &console] { ReadMeter(*options, *form, console); });
}

}  // namespace torvane::cli
