#include <CLI/CLI.hpp>
#include <algorithm>
#include <optional>

#include "cli/command_error.h"
#include "cli/commands/commands.h"
#include "cli/long_run.h"
#include "cli/model_options.h"
#include "cli/number_options.h"
#include "cli/pictures.h"
#include "cli/result_file.h"
#include "core/text.h"
#include "instruments/scope/scope_csv.h"

namespace torvane::cli {
namespace {

struct ScopeOptions {
  ModelOptions Model;
  double Until = 0.0;
  std::string Out;
  std::string Picture;
};

ZelScope& FirstScope(const ZelBenchTop& bench) {
  const auto& scopes = bench.Instruments(InstrumentKind::Scope);
  if (scopes.empty()) throw UsageError("the model has no scope");
  return dynamic_cast<ZelScope&>(*scopes.front());
}

// The desktop's run loop up to the given time; keeps each screen that completes on the way.
std::optional<ScopeScreen> LastCompleteScreen(ZelScope& scope, LongRun& run, double until) {
  std::optional<ScopeScreen> screen;
  bool running = true;
  while (running && run.Time() < until) {
    running = run.RunChunk(until);
    if (scope.TakeScreenCompleted()) scope.CopyScreen(ScopeSweep::Whole, screen.emplace());
  }
  return screen;
}

void ShowScope(const ScopeOptions& options, Console& console) {
  CheckPictureFile(options.Picture);
  CheckOutputs(options.Out, options.Picture);
  const auto model = OpenModel(options.Model, console);
  ZelScope& scope = FirstScope(model->Bench());
  model->Bench().StartScopes();
  ResultFile file(options.Out);
  std::optional<ScopeScreen> screen;
  {
    LongRun run(*model, console, options.Until, Console::CanShowProgress(false));
    screen = LastCompleteScreen(scope, run, options.Until);
  }
  if (!screen) {
    throw StoppedError("the scope completed no screen by " + FormatShortest(model->Time()) +
                       " s; a screen lasts " +
                       FormatShortest(scope.SampleInterval() * scope.ScreenLength()) + " s");
  }
  file.Write(ScreenCsv(scope, *screen));
  file.Close();
  if (options.Picture.empty()) return;
  WritePicture(scope, *screen, options.Picture);
}

}  // namespace

void AddScopeCommand(CLI::App& app, Console& console) {
  CLI::App* const command = app.add_subcommand(
      "scope", "Run a model with its scope and give the last complete screen as CSV");
  const auto options = std::make_shared<ScopeOptions>();
  AddModelOptions(*command, options->Model);
  AddNumber(*command, "--until", options->Until, NumberRange::Positive,
            "Simulated time at which to end, seconds")
      ->required();
  command->add_option("--out", options->Out, "File to write; standard output without it")
      ->type_name("FILE.csv");
  command->add_option("--picture", options->Picture, "Draw the screen into this file as well")
      ->type_name("FILE.png|svg|pdf");
  command->callback([options, &console] { ShowScope(*options, console); });
}

}  // namespace torvane::cli
