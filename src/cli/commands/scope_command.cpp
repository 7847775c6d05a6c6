#include <CLI/CLI.hpp>
#include <sstream>

#include "cli/arguments/model_arguments.h"
#include "cli/arguments/scope_arguments.h"
#include "cli/commands/commands.h"
#include "cli/io/console.h"
#include "cli/io/number_options.h"
#include "cli/io/pictures.h"
#include "cli/io/result_file.h"
#include "cli/io/table.h"
#include "core/messages.h"
#include "instruments/scope/scope_csv.h"
#include "instruments/scope/trace_csv.h"
#include "study/run.h"
#include "workbench/model/model_options.h"
#include "workbench/model/scope_run.h"
#include "workbench/model/scope_settings.h"
#include "workbench/work_fault.h"

namespace torvane::cli {
namespace {

struct ScopeOptions {
  ModelOptions Model;
  ScopeSettings Scope;
  double Until = 0.0;
  std::string Out;
  std::string Picture;
  std::string Overlay;
  std::vector<std::string> Keep;
  TableForm Form;
};

void WriteScreen(const ZelScope& scope, const ScopeScreen& screen, const TableForm& form,
                 ResultFile& file) {
  std::vector<Column> columns{{"Time", scope.TimeChannel().Signal().Unit()}};
  for (const std::size_t i : scope.DisplayedChannels()) {
    const ZelChannel& channel = *scope.Channels()[i];
    columns.push_back({channel.Name(), channel.Signal().Unit()});
  }
  TableWriter table(columns, form, file);
  const std::string text = ScreenCsv(scope, screen);
  std::istringstream lines(text.substr(text.find('\n') + 1));
  for (std::string line; std::getline(lines, line);) table.WriteLine(line + '\n');
  table.End();
}

void KeepOverlay(ZelScope& scope, const std::string& path) {
  const TraceText traces = ReadTraceFile(path, scope);
  if (!traces.Fault.empty()) throw FileError("--overlay " + traces.Fault);
  if (!traces.Note.empty()) Note("--overlay \"" + path + "\": " + traces.Note);
  scope.KeepTraces(traces.Screen);
}

// Built as the first of its kind, like the one that it lies behind.
void KeepWith(const ScopeOptions& options, ZelScope& scope, Console& console) {
  ModelOptions with = options.Model;
  with.Settings.insert(with.Settings.end(), options.Keep.begin(), options.Keep.end());
  const auto model = MakeFirst([&] { return OpenModel(with, console); });
  ZelScope& other = FirstScope(model->Bench());
  Apply(model->Bench(), options.Scope);
  scope.KeepTraces(LastCompleteScreen(*model, other, options.Until, console));
}

void ShowScope(const ScopeOptions& options, Console& console) {
  CheckPictureFile(options.Picture);
  CheckOutputs(options.Out, options.Picture, options.Overlay);
  const auto model = OpenModel(options.Model, console);
  ZelScope& scope = FirstScope(model->Bench());
  Apply(model->Bench(), options.Scope);
  if (!options.Overlay.empty()) KeepOverlay(scope, options.Overlay);
  ResultFile file(options.Out);
  console.ShowRuns();
  const ScopeScreen screen = LastCompleteScreen(*model, scope, options.Until, console);
  WriteScreen(scope, screen, options.Form, file);
  file.Close();
  if (options.Picture.empty()) return;
  if (!options.Keep.empty()) KeepWith(options, scope, console);
  WritePicture(scope, screen, options.Picture);
}

}  // namespace

void AddScopeCommand(CLI::App& app, Console& console) {
  CLI::App* const command = app.add_subcommand(
      "scope", "Run a model with its scope and give the last complete screen as CSV");
  const auto options = std::make_shared<ScopeOptions>();
  AddModelOptions(*command, options->Model);
  AddScopeSettings(*command, options->Scope);
  AddNumber(*command, "--until", options->Until, NumberRange::Positive,
            "Simulated time at which to end, seconds")
      ->required();
  command->add_option("--out", options->Out, "File to write; standard output without it")
      ->type_name("FILE.csv");
  CLI::Option* const picture =
      command->add_option("--picture", options->Picture, "Draw the screen into this file as well")
          ->type_name("FILE.png|svg|pdf");
  CLI::Option* const overlay = command->add_option(
      "--overlay", options->Overlay,
      "Lay the traces of this file, from a bench or --out, behind those of the picture");
  overlay->type_name("FILE.csv")->needs(picture);
  command
      ->add_option("--keep", options->Keep,
                   "Lay what the scope shows with this constant behind the picture's traces; the "
                   "legend tells what differs. Repeatable")
      ->allow_extra_args(false)
      ->type_name("NAME=VALUE")
      ->needs(picture)
      ->excludes(overlay);
  AddTableForm(*command, options->Form);
  command->callback([options, &console] { ShowScope(*options, console); });
}

}  // namespace torvane::cli
