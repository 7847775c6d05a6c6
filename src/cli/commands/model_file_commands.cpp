#include <CLI/CLI.hpp>

#include "cli/arguments/instrument_arguments.h"
#include "cli/arguments/model_arguments.h"
#include "cli/arguments/scope_arguments.h"
#include "cli/commands/commands.h"
#include "cli/io/console.h"
#include "core/files/model_file.h"
#include "workbench/model/loop_loading.h"
#include "workbench/model/model_file_loading.h"
#include "workbench/model/model_options.h"
#include "workbench/model/scope_settings.h"
#include "workbench/work_fault.h"

namespace torvane::cli {
namespace {

void Check(const std::string& path, Console& console) {
  if (NamesLoop(path)) return CheckLoop(path, console);
  CheckModelFile(path, console);
  if (console.Reports() > 0) throw FileError("");
}

struct ConvertOptions {
  ModelOptions Model;
  ScopeSettings Scope;
  InstrumentSettings Instruments;
};

void Convert(const CLI::App& command, const ConvertOptions& options, const std::string& path,
             Console& console) {
  const auto model = OpenModel(options.Model, console);
  Apply(model->Bench(), options.Scope);
  Apply(command, *model, options.Instruments, console);
  if (!SaveModelFile(*model, path)) throw FileError("");
}

}  // namespace

void AddCheckCommand(CLI::App& app, Console& console) {
  CLI::App* const command = app.add_subcommand(
      "check",
      "Load a model file or a loop (.mo) and report all that is wrong with it; exit code 3 if "
      "anything is");
  const auto path = std::make_shared<std::string>();
  command->add_option("FILE", *path, "Model file, or loop")->required()->type_name("");
  command->callback([path, &console] { Check(*path, console); });
}

void AddConvertCommand(CLI::App& app, Console& console) {
  CLI::App* const command = app.add_subcommand(
      "convert", "Load a model file, or a model as it is at first, and save it as a model file");
  const auto options = std::make_shared<ConvertOptions>();
  const auto path = std::make_shared<std::string>();
  AddModelOptions(*command, options->Model);
  AddScopeSettings(*command, options->Scope);
  AddInstrumentSettings(*command, options->Instruments);
  command->add_option("OUT", *path, "Model file to write")->required()->type_name("");
  command->callback(
      [command, options, path, &console] { Convert(*command, *options, *path, console); });
}

}  // namespace torvane::cli
