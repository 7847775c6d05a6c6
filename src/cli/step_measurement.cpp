#include "cli/step_measurement.h"

#include <algorithm>
#include <functional>

#include "cli/model_options.h"
#include "core/text.h"
#include "instruments/scope/screen_measures.h"

namespace torvane::cli {
namespace {

constexpr int ErrorDigits = 6;

// Of command less response, from the jump on, and over how long.
std::vector<std::string> ErrorFields(const StepRun& run) {
  const std::size_t jump = *run.Before() + 1;
  const auto from = static_cast<std::ptrdiff_t>(jump);
  std::vector<double> error;
  std::transform(run.Command.begin() + from, run.Command.end(), run.Response.begin() + from,
                 std::back_inserter(error), std::minus());
  const auto of = MeasureTrace(error);
  return {of ? FormatGeneral(of->Rms, ErrorDigits, 2) : "",
          FormatGeneral(run.Times.back() - run.Times[jump], ErrorDigits, 2)};
}

}  // namespace

std::vector<std::string> StepCaptions() {
  return {"Overshoot", "Rise", "Settling", "Delay", "RMS Error", "Window"};
}

void CheckStep(ZelModel& model, const StepOptions& options) {
  NamedSignal(model.Bench(), options.Command);
  NamedSignal(model.Bench(), options.Response);
}

MeasuredStep MeasureStep(const MakeModel& make, const StepOptions& options, Console& console,
                         bool showProgress) {
  MeasuredStep measured;
  measured.Run = RunOneStep(make, options, console, showProgress);
  measured.Reason = measured.Run.Reason;
  measured.Fields.resize(StepCaptions().size());
  if (!measured.Reason.empty()) return measured;
  const StepMeasures of = Measured(measured.Run);
  measured.Reason = Reason(of.Gap());
  measured.Fields = {of.Overshoot.Text(), of.Rise.Text(), of.Settling.Text(), of.Delay.Text()};
  for (const std::string& field : ErrorFields(measured.Run)) measured.Fields.push_back(field);
  return measured;
}

}  // namespace torvane::cli
