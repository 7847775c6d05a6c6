#include <CLI/CLI.hpp>

#include "cli/commands/commands.h"
#include "cli/io/result_file.h"
#include "models/catalogue.h"

namespace torvane::cli {
namespace {

void ListModels() {
  ResultFile output("");
  int index = 0;
  for (const std::string& name : Catalogue().Names()) {
    output.Write(std::to_string(index++) + "\t" + name + "\n");
  }
  output.Close();
}

}  // namespace

void AddModelsCommand(CLI::App& app) {
  app.add_subcommand("models", "List the models: index, tab, name")->callback(ListModels);
}

}  // namespace torvane::cli
