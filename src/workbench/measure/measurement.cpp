#include "workbench/measure/measurement.h"

#include <algorithm>

#include "core/messages.h"
#include "instruments/scope/scope.h"
#include "workbench/measure/theory_measurement.h"
#include "workbench/work_fault.h"

namespace torvane {
namespace {

StepOptions Step(const MeasureOptions& options) {
  const ResponseOptions& response = options.Bode.Response;
  std::optional<double> window = options.Window;
  if (options.TimeBase) window = *options.TimeBase * ZelScope::HorizontalDivisions;
  return {response.Input, response.Output, options.Until, window, options.Peak};
}

// Those of the first analyser's pair of that name, if it has one.
void TakeClosedLoop(const ZelBenchTop& bench, ResponseOptions& response) {
  const auto& analysers = bench.Instruments(InstrumentKind::FftAnalyser);
  if (analysers.empty()) return;
  const auto& setups = dynamic_cast<const FrequencyAnalyser&>(*analysers.front()).Setups();
  const auto closed = std::ranges::find(setups, "Closed", &AnalyserSetup::Name);
  if (closed == setups.end()) return;
  response.Input = closed->Input;
  response.Output = closed->Output;
  Note("What is measured is the closed loop, " + closed->Input + " to " + closed->Output + ".");
}

}  // namespace

void CheckMeasurement(ZelModel& model, MeasureOptions& options, Supervisor& supervisor) {
  ResponseOptions& response = options.Bode.Response;
  if (response.Input.empty() && response.Output.empty()) TakeClosedLoop(model.Bench(), response);
  if (response.Input.empty()) throw UsageError("--command is required");
  if (response.Output.empty()) throw UsageError("--response is required");
  CheckStep(model, Step(options));
  if (options.WithBode) CheckLoop(model, {options.Bode, options.Loop}, supervisor);
  if (options.WithTheory) NoteLoop(model);
}

std::vector<std::string> UnitsOfMeasures(const ZelModel& model, const MeasureOptions& options,
                                         const MeasureSet& set) {
  const auto unitOf = [&](const std::string& name) {
    return name.empty() ? std::string() : NamedSignal(model.Bench(), name).Unit();
  };
  return MeasureUnits(set, unitOf(options.Bode.Response.Input), unitOf(options.Peak));
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

RunReadings ReadRun(const MakeModel& make, const MeasureOptions& options, Supervisor& supervisor,
                    StudyTrace* trace) {
  const ResponseOptions& response = options.Bode.Response;
  RunReadings readings;
  const StepRun step = ReadStep(make, Step(options), supervisor, readings);
  if (trace) TakeTrace(step, *trace);
  if (options.WithBode) {
    ReadLoop(make, {options.Bode, options.Loop}, supervisor, readings);
  }
  if (options.WithTheory) ReadTheory(make, response.Input, response.Output, readings);
  return readings;
}

}  // namespace torvane
