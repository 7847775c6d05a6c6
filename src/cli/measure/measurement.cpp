#include "cli/measure/measurement.h"

#include <CLI/CLI.hpp>

#include "cli/command_error.h"
#include "cli/io/number_options.h"
#include "cli/measure/theory_measurement.h"
#include "instruments/scope/scope.h"

namespace torvane::cli {
namespace {

StepOptions Step(const MeasureOptions& options) {
  const ResponseOptions& response = options.Bode.Response;
  std::optional<double> window = options.Window;
  if (options.TimeBase) window = *options.TimeBase * ZelScope::HorizontalDivisions;
  return {response.Input, response.Output, options.Until, window, options.Peak};
}

}  // namespace

void AddMeasureOptions(CLI::App& command, MeasureOptions& options) {
  BodeOptions& bode = options.Bode;
  command.add_option("--command", bode.Response.Input, "Signal that is to be followed")
      ->type_name("SIGNAL");
  command.add_option("--response", bode.Response.Output, "Signal that follows it")
      ->type_name("SIGNAL");
  AddNumber(command, "--until", options.Until, NumberRange::Positive,
            "End so long after the step at the latest, seconds; 10 s without it");
  CLI::Option* const window =
      AddNumber(command, "--window", options.Window, NumberRange::Positive,
                "Measure so long after the step, seconds; until the response stands without it");
  AddNumber(command, "--time-base", options.TimeBase, NumberRange::Positive,
            "The same as ten divisions of the scope, seconds a division")
      ->excludes(window);
  command
      .add_option("--peak", options.Peak,
                  "Tell the largest magnitude of this signal as well, from just before the step on")
      ->type_name("SIGNAL");
  CLI::Option* const withBode =
      command.add_flag("--bode", options.WithBode,
                       "Measure bandwidth, peaking, gain and phase margin as well, with the FFT "
                       "analyser in a run of its own");
  command
      .add_flag("--theory", options.WithTheory,
                "Tell bandwidth, peaking and margins from the linearised equations instead, "
                "without the scatter of a measurement")
      ->excludes(withBode);
  CLI::Option* const loop =
      command
          .add_option("--loop", options.Loop,
                      "Read the margins off the open loop from IN, the error, to OUT, the "
                      "feedback, in place of the loop that the model names")
          ->type_name("IN:OUT");
  loop->needs(withBode);
  const std::size_t before = command.get_options().size();
  AddRecordOptions(command, bode);
  AddExcitationOptions(command, bode.Response);
  const std::vector<CLI::Option*> all = command.get_options();
  for (std::size_t k = before; k < all.size(); ++k) all[k]->needs(withBode);
  AddModelSettings(command, bode.Response.Model);
}

void CheckMeasurement(ZelModel& model, const MeasureOptions& options, Console& console) {
  const ResponseOptions& response = options.Bode.Response;
  if (response.Input.empty()) throw UsageError("--command is required");
  if (response.Output.empty()) throw UsageError("--response is required");
  CheckStep(model, Step(options));
  if (options.WithBode) CheckLoop(model, {options.Bode, options.Loop}, console);
  if (options.WithTheory) NoteLoop(model);
}

void CheckMeasured(const std::string& option, const RunMeasure& measure, const MeasureSet& set) {
  if (set.Has(measure.Needs)) return;
  const char* needed = "--require";
  if (measure.Needs == MeasureNeeds::Loop) needed = "--bode or --theory";
  if (measure.Needs == MeasureNeeds::Peak) needed = "--peak";
  throw UsageError(option + " " + measure.Caption + " needs " + needed);
}

void CheckAskedFor(const std::string& option, const RunMeasure& measure, const MeasureSet& set) {
  if (measure.Value == &RunReadings::Window || measure.Value == &RunReadings::Meets) {
    throw UsageError(option + " " + measure.Caption + ": it says nothing of how good a run is");
  }
  if (measure.Value == &RunReadings::RmsError && !set.OneWindow) {
    throw UsageError(option +
                     " RMS Error needs --window, or it would be told of longer and "
                     "shorter runs; IAE and ISE go without");
  }
  CheckMeasured(option, measure, set);
}

RunReadings ReadRun(const MakeModel& make, const MeasureOptions& options, Console& console,
                    bool showProgress, StudyTrace* trace) {
  const ResponseOptions& response = options.Bode.Response;
  RunReadings readings;
  const StepRun step = ReadStep(make, Step(options), console, showProgress, readings);
  if (trace) TakeTrace(step, *trace);
  if (options.WithBode) {
    ReadLoop(make, {options.Bode, options.Loop}, console, showProgress, readings);
  }
  if (options.WithTheory) ReadTheory(make, response.Input, response.Output, readings);
  return readings;
}

}  // namespace torvane::cli
