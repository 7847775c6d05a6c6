#include <CLI/CLI.hpp>

#include "cli/commands.h"
#include "cli/csv.h"
#include "cli/model_options.h"
#include "cli/result_file.h"
#include "core/constant.h"
#include "core/text.h"

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

void ListConstants(const std::string& modelName) {
  const auto model = OpenModel(modelName);
  ResultFile output("");
  output.Write(CsvLine({"Name", "Unit", "Default", "Lower", "Upper", "Choices"}));
  for (const Constant* constant : model->Bench().Constants()) {
    output.Write(CsvLine({constant->Name(), constant->Unit(), FormatShortest(constant->Default()),
                          FormatShortest(constant->Lower()), FormatShortest(constant->Upper()),
                          JoinedChoices(*constant)}));
  }
  output.Close();
}

}  // namespace

void AddConstantsCommand(CLI::App& app) {
  CLI::App* const command = app.add_subcommand(
      "constants", "List a model's constants as CSV; those of a list by the choices' index");
  const auto model = std::make_shared<std::string>();
  AddModelName(*command, *model);
  command->callback([model] { ListConstants(*model); });
}

}  // namespace torvane::cli
