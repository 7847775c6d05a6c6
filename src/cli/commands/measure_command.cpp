#include <CLI/CLI.hpp>

#include "cli/arguments/measure_arguments.h"
#include "cli/arguments/model_arguments.h"
#include "cli/commands/commands.h"
#include "cli/io/console.h"
#include "cli/io/result_file.h"
#include "cli/io/table.h"
#include "cli/study/study_columns.h"
#include "core/messages.h"
#include "study/row.h"
#include "workbench/measure/measurement.h"
#include "workbench/quiet.h"

namespace torvane::cli {
namespace {

void Measure(MeasureOptions options, const TableForm& form, Console& console) {
  auto model = OpenModel(options.Bode.Response.Model, console);
  CheckMeasurement(*model, options, console);
  ResultFile output("");
  const MakeModel make = [&] { return OpenModel(options.Bode.Response.Model, console); };
  console.ShowRuns();
  const RunReadings readings = [&] {
    // Building the model once has said all that there is to say about the options.
    const Quiet quiet;
    return ReadRun(make, options, console);
  }();
  for (const std::string& warning : readings.Warnings) Warning(warning);
  std::vector<std::string> fields = MeasureFields(MeasureValues(readings, options.Measured()));
  fields.push_back(Joined(readings.Reasons));
  TableWriter table(MeasureColumns(*model, options, options.Measured()), form, output);
  table.Write(fields);
  table.End();
  output.Close();
}

}  // namespace

void AddMeasureCommand(CLI::App& app, Console& console) {
  CLI::App* const command = app.add_subcommand(
      "measure", "Measure how a signal follows a step of another one, as a line of CSV");
  const auto options = std::make_shared<MeasureOptions>();
  AddModelName(*command, options->Bode.Response.Model.Model);
  AddMeasureOptions(*command, *options);
  const auto form = std::make_shared<TableForm>();
  AddTableForm(*command, *form);
  command->callback([options, form, &console] { Measure(*options, *form, console); });
}

}  // namespace torvane::cli
