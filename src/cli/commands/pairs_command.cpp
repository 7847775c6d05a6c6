#include <CLI/CLI.hpp>

#include "cli/arguments/model_arguments.h"
#include "cli/commands/commands.h"
#include "cli/io/console.h"
#include "cli/io/result_file.h"
#include "cli/io/table.h"
#include "core/text.h"
#include "instruments/analyser/analyser.h"
#include "workbench/model/model_options.h"

namespace torvane::cli {
namespace {

void ListPairs(const std::string& modelName, const TableForm& form, Console& console) {
  const auto model = OpenModel(modelName, console);
  ResultFile output("");
  TableWriter table(
      {{"Name", "", true}, {"Input", "", true}, {"Output", "", true}, {"Phase Add", "deg"}}, form,
      output);
  const auto& analysers = model->Bench().Instruments(InstrumentKind::FftAnalyser);
  if (!analysers.empty()) {
    const auto& analyser = dynamic_cast<const FrequencyAnalyser&>(*analysers.front());
    for (const AnalyserSetup& pair : analyser.Setups()) {
      table.Write({pair.Name, pair.Input, pair.Output, FormatShortest(pair.PhaseAdd)});
    }
  }
  table.End();
  output.Close();
}

}  // namespace

void AddPairsCommand(CLI::App& app, Console& console) {
  CLI::App* const command = app.add_subcommand(
      "pairs", "List the pairs of signals that a model offers its analysers, as CSV");
  const auto model = std::make_shared<std::string>();
  const auto form = std::make_shared<TableForm>();
  AddModelName(*command, *model);
  AddTableForm(*command, *form);
  command->callback([model, form, &console] { ListPairs(*model, *form, console); });
}

}  // namespace torvane::cli
