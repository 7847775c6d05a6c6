#include <CLI/CLI.hpp>

#include "cli/arguments/model_arguments.h"
#include "cli/commands/commands.h"
#include "cli/io/console.h"
#include "cli/io/result_file.h"
#include "core/csv.h"
#include "workbench/model/model_options.h"

namespace torvane::cli {
namespace {

void ListSignals(const std::string& modelName, Console& console) {
  const auto model = OpenModel(modelName, console);
  ResultFile output("");
  output.Write(CsvLine({"Name", "Unit", "State", "Description"}));
  for (const Variable* signal : OfferedSignals(model->Bench())) {
    output.Write(CsvLine(
        {signal->Name(), signal->Unit(), signal->IsState() ? "1" : "0", signal->Description()}));
  }
  output.Close();
}

}  // namespace

void AddSignalsCommand(CLI::App& app, Console& console) {
  CLI::App* const command = app.add_subcommand(
      "signals",
      "List the signals that a model offers to instruments as CSV; State 1 is integrated");
  const auto model = std::make_shared<std::string>();
  AddModelName(*command, *model);
  command->callback([model, &console] { ListSignals(*model, console); });
}

}  // namespace torvane::cli
