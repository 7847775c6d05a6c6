#include <CLI/CLI.hpp>

#include "cli/commands/commands.h"
#include "cli/io/result_file.h"
#include "cli/io/table.h"
#include "models/catalogue.h"

namespace torvane::cli {
namespace {

// Without a format a line each, as one reads it.
void ListModels(const TableForm& form) {
  ResultFile output("");
  std::optional<TableWriter> table;
  if (form.Format)
    table.emplace(std::vector<Column>{{"Index", ""}, {"Name", "", true}}, form, output);
  int index = 0;
  for (const std::string& name : Catalogue().Names()) {
    const std::string number = std::to_string(index++);
    if (table) {
      table->Write({number, name});
    } else {
      output.Write(number + "\t" + name + "\n");
    }
  }
  if (table) table->End();
  output.Close();
}

}  // namespace

void AddModelsCommand(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("models", "List the models: index, tab, name");
  const auto form = std::make_shared<TableForm>();
  AddFormat(*command, *form);
  command->callback([form] { ListModels(*form); });
}

}  // namespace torvane::cli
