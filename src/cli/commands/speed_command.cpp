#include <CLI/CLI.hpp>
#include <chrono>
#include <functional>

#include "cli/arguments/instrument_arguments.h"
#include "cli/arguments/model_arguments.h"
#include "cli/arguments/scope_arguments.h"
#include "cli/commands/commands.h"
#include "cli/io/console.h"
#include "cli/io/interrupt.h"
#include "cli/io/number_options.h"
#include "cli/io/result_file.h"
#include "core/run_loop.h"
#include "core/text.h"
#include "workbench/model/model_options.h"
#include "workbench/work_fault.h"

namespace torvane::cli {
namespace {

struct SpeedOptions {
  ModelOptions Model;
  ScopeSettings Scope;
  InstrumentSettings Instruments;  ///< of the meter; analysers stand still here
  double Seconds = 3.0;
  bool NoInstruments = false;
};

// Work between two looks at the clock: a fraction of a millisecond, beside which reading the clock
// costs nothing.
constexpr int PassesPerLook = 16;
constexpr double StepsPerLook = 4096.0;

bool RunInstruments(ZelModel& model, const std::function<bool()>& timeUp) {
  for (int pass = 0; pass < PassesPerLook; ++pass) {
    if (RunPass(model, timeUp) == PassResult::Stopped) return false;
  }
  return true;
}

bool RunSolverAlone(ZelModel& model) {
  model.Solver().RunUntil(model.Time() + StepsPerLook * model.Solver().Step());
  return true;
}

std::string Figures(const ZelModel& model, double step, double wall) {
  const double simulated = model.Time();
  return "simulated_s=" + FormatShortest(simulated) + " wall_s=" + FormatShortest(wall) +
         " ratio=" + FormatShortest(simulated / wall) +
         " ns_per_step=" + FormatShortest(wall * 1e9 / (simulated / step)) + "\n";
}

void MeasureSpeed(const CLI::App& command, const SpeedOptions& options, Console& console) {
  const auto model = OpenModel(options.Model, console);
  Apply(model->Bench(), options.Scope);
  Apply(command, *model, options.Instruments, console);
  model->Bench().StartScopes();
  ResultFile output("");
  const InterruptGuard guard;
  const auto start = std::chrono::steady_clock::now();
  double wall = 0.0;
  const auto timeUp = [&] {
    wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return wall >= options.Seconds || InterruptGuard::Interrupted();
  };
  try {
    bool running = true;
    while (running && !timeUp()) {
      running = options.NoInstruments ? RunSolverAlone(*model) : RunInstruments(*model, timeUp);
    }
  } catch (const SolverOverflow& overflow) {
    OfferResetAfterOverflow(*model, overflow);
    throw StoppedError(overflow.what());
  }
  output.Write(Figures(*model, model->Solver().Step(), wall));
  output.Close();
}

}  // namespace

void AddSpeedCommand(CLI::App& app, Console& console) {
  CLI::App* const command = app.add_subcommand(
      "speed", "Measure how fast a model runs: the desktop's run loop without a display");
  const auto options = std::make_shared<SpeedOptions>();
  AddModelOptions(*command, options->Model);
  AddScopeSettings(*command, options->Scope);
  AddMeterSettings(*command, options->Instruments.Meter);
  AddNumber(*command, "--for", options->Seconds, NumberRange::Positive,
            "Wall time to run, seconds (3 without it)");
  command->add_flag("--no-instruments", options->NoInstruments, "Leave only solver and model");
  command->callback([command, options, &console] { MeasureSpeed(*command, *options, console); });
}

}  // namespace torvane::cli
