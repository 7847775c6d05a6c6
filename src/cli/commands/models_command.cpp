#include <CLI/CLI.hpp>

#include "cli/commands/commands.h"
#include "cli/result_file.h"
#include "models/catalogue.h"

namespace torvane::cli {
namespace {

void ListModels() {
  ResultFile output("");
  for (std::size_t i = 0; i < ModelNames().size(); ++i) {
    output.Write(std::to_string(i) + "\t" + ModelNames()[i] + "\n");
  }
  output.Close();
}

}  // namespace

void AddModelsCommand(CLI::App& app) {
  app.add_subcommand("models", "List the models: index, tab, name")->callback(ListModels);
}

}  // namespace torvane::cli
