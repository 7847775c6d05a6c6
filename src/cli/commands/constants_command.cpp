#include <CLI/CLI.hpp>

#include "cli/arguments/model_arguments.h"
#include "cli/commands/commands.h"
#include "cli/io/console.h"
#include "cli/io/result_file.h"
#include "cli/io/table.h"
#include "core/constant.h"
#include "core/text.h"
#include "workbench/model/model_options.h"

namespace torvane::cli {
namespace {

std::string JoinedChoices(const Constant& constant) {
  std::string joined;
  for (const std::string& choice : constant.Choices()) {
    if (!joined.empty()) joined += '|';
    joined += choice;
  }
  return joined;
}

void ListConstants(const std::string& modelName, const TableForm& form, Console& console) {
  const auto model = OpenModel(modelName, console);
  // A model's constants are at their defaults; only a file's values need a column.
  const bool withValues = NamesModelFile(modelName);
  ResultFile output("");
  std::vector<Column> columns{{"Name", "", true}, {"Unit", "", true}, {"Default", ""},
                              {"Lower", ""},      {"Upper", ""},      {"Choices", "", true}};
  if (withValues) columns.push_back({"Value", ""});
  columns.push_back({"Description", "", true});
  TableWriter table(columns, form, output);
  for (const Constant* constant : model->Bench().Constants()) {
    std::vector<std::string> line{constant->Name(),
                                  constant->Unit(),
                                  FormatShortest(constant->Default()),
                                  FormatShortest(constant->Lower()),
                                  FormatShortest(constant->Upper()),
                                  JoinedChoices(*constant)};
    if (withValues) line.push_back(FormatShortest(constant->Value()));
    line.push_back(constant->Description());
    table.Write(line);
  }
  table.End();
  output.Close();
}

}  // namespace

void AddConstantsCommand(CLI::App& app, Console& console) {
  CLI::App* const command = app.add_subcommand(
      "constants",
      "List a model's constants as CSV, with the values of a model file; those of a list by the "
      "choices' index");
  const auto model = std::make_shared<std::string>();
  const auto form = std::make_shared<TableForm>();
  AddModelName(*command, *model);
  AddFormat(*command, *form);
  command->callback([model, form, &console] { ListConstants(*model, *form, console); });
}

}  // namespace torvane::cli
