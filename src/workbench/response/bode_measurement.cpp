#include "workbench/response/bode_measurement.h"

#include <cmath>

#include "core/messages.h"
#include "core/text.h"
#include "workbench/model/long_run.h"
#include "workbench/work_fault.h"

namespace torvane {

void SetUp(ZelXfer& xfer, const BodeOptions& options) {
  const ResponseOptions& response = options.Response;
  FftSetup setup = xfer.Setup();
  setup.Order = options.Order.value_or(setup.Order);
  setup.TSample = response.TSample.value_or(setup.TSample);
  setup.TStartDelay = options.StartDelay.value_or(setup.TStartDelay);
  setup.TEndDelay = options.EndDelay.value_or(setup.TEndDelay);
  setup.Amplitude = response.Amplitude.value_or(setup.Amplitude);
  setup.Offset = response.Offset.value_or(setup.Offset);
  Heed(xfer.Check(setup));
  xfer.Apply(setup);
  if (options.Spectrum) xfer.SetSpectrum(*options.Spectrum);
  ApplyOptions(xfer, response);
}

std::optional<std::string> LoopSampleWarning(const ZelXfer& xfer) {
  constexpr double Near = 1e-6;
  const auto loop = xfer.Loop();
  if (!loop || loop->SampleTime <= 0.0) return {};
  const double multiple = xfer.TSample() / loop->SampleTime;
  if (multiple > Near && std::abs(std::remainder(multiple - 1.0, 2.0)) <= Near) return {};
  return "The model's loop samples every " + FormatShortest(loop->SampleTime) +
         " sec: margins are true with that --tsample, or an odd multiple of it.";
}

// A measurement from Run to Complete. No other instrument asks for times.
void MeasureResponse(ZelModel& model, ZelXfer& xfer, Supervisor& supervisor) {
  const double end = xfer.TStartDelay() + xfer.Averages() * xfer.RecordTime();
  LongRun run(model, supervisor, end);
  xfer.Run();
  while (xfer.Measuring()) {
    run.StepTo(xfer.NextTime());
    run.Service(xfer);
  }
  if (xfer.HasData(0)) return;
  if (xfer.SampleCount() == xfer.Length()) {
    throw StoppedError("nothing was excited, so that there is no response");
  }
  throw StoppedError("the record is not whole: " + std::to_string(xfer.SampleCount()) + " of " +
                     std::to_string(xfer.Length()) + " samples");
}

}  // namespace torvane
