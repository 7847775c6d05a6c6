#include "workbench/response/sweep_measurement.h"

#include <limits>

#include "core/text.h"
#include "workbench/model/long_run.h"
#include "workbench/work_fault.h"

namespace torvane {

void SetUp(ZelSweptDSA& analyser, const SweepOptions& options) {
  const ResponseOptions& response = options.Response;
  const double from = options.From.value_or(analyser.FreqMin());
  const double to = options.To.value_or(analyser.FreqMax());
  if (from >= to) {
    throw UsageError("--from must be below --to: " + FormatShortest(from) + " is not below " +
                     FormatShortest(to));
  }
  SweepSetup setup = analyser.Setup();
  setup.StartFreq = from;
  setup.EndFreq = to;
  setup.StepsPerDecade = options.PerDecade.value_or(setup.StepsPerDecade);
  setup.SettleTime = options.Settle.value_or(setup.SettleTime);
  setup.MeasurementTime = options.Measure.value_or(setup.MeasurementTime);
  setup.TSample = response.TSample.value_or(setup.TSample);
  setup.Amplitude = response.Amplitude.value_or(setup.Amplitude);
  setup.Offset = response.Offset.value_or(setup.Offset);
  Heed(analyser.Check(setup));
  analyser.Apply(setup);
  ApplyOptions(analyser, response);
}

// One sweep, from Run to its last point. No other instrument asks for times.
void MeasureResponse(ZelModel& model, ZelSweptDSA& analyser, Supervisor& supervisor) {
  LongRun run(model, supervisor, analyser.ExpectedPlan().Seconds);
  analyser.Run();
  while (analyser.Measuring()) {
    run.Serve(analyser, std::numeric_limits<double>::infinity());
    // Between two points it asks for no time of its own.
    if (!analyser.Measuring()) break;
    run.StepTo(analyser.NextTick());
    run.Service(analyser);
  }
  const int points = analyser.PointCount();
  if (points == analyser.ExpectedPlan().Points) return;
  throw StoppedError("the sweep is not whole: " + std::to_string(points) + " points");
}

}  // namespace torvane
