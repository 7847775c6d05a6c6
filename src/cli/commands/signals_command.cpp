#include <CLI/CLI.hpp>

#include "cli/arguments/model_arguments.h"
#include "cli/commands/commands.h"
#include "cli/io/console.h"
#include "cli/io/result_file.h"
#include "cli/io/table.h"
#include "workbench/model/model_options.h"

namespace torvane::cli {
namespace {

void ListSignals(const std::string& modelName, const TableForm& form, Console& console) {
  const auto model = OpenModel(modelName, console);
  ResultFile output("");
  TableWriter table(
      {{"Name", "", true}, {"Unit", "", true}, {"State", ""}, {"Description", "", true}}, form,
      output);
  for (const Variable* signal : OfferedSignals(model->Bench())) {
    table.Write(
        {signal->Name(), signal->Unit(), signal->IsState() ? "1" : "0", signal->Description()});
  }
  table.End();
  output.Close();
}

}  // namespace

void AddSignalsCommand(CLI::App& app, Console& console) {
  CLI::App* const command = app.add_subcommand(
      "signals",
      "List the signals that a model offers to instruments as CSV; State 1 is integrated");
  const auto model = std::make_shared<std::string>();
  const auto form = std::make_shared<TableForm>();
  AddModelName(*command, *model);
  AddFormat(*command, *form);
  command->callback([model, form, &console] { ListSignals(*model, *form, console); });
}

}  // namespace torvane::cli
