#include "workbench/measure/step_measurement.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "core/text.h"
#include "instruments/scope/screen_measures.h"
#include "workbench/model/model_options.h"

namespace torvane {
namespace {

constexpr int ErrorDigits = 6;

std::optional<double> Rounded(double value, int digits) {
  return ParseNumber(FormatGeneral(value, digits, 2));
}

// To the digits that are known.
std::optional<double> Known(const StepFigure& figure) {
  return ParseNumber(figure.Text());
}

// Of a trace that is drawn straight from row to row.
double Integral(const std::vector<double>& values, const std::vector<double>& times) {
  double sum = 0.0;
  for (std::size_t i = 1; i < values.size(); ++i) {
    sum += 0.5 * (values[i - 1] + values[i]) * (times[i] - times[i - 1]);
  }
  return sum;
}

// Of command less response, from the jump on, and over how long.
void ReadError(const StepRun& run, RunReadings& readings) {
  const std::size_t jump = *run.Before() + 1;
  const auto from = static_cast<std::ptrdiff_t>(jump);
  std::vector<double> error;
  std::transform(run.Command.begin() + from, run.Command.end(), run.Response.begin() + from,
                 std::back_inserter(error), std::minus());
  if (const auto of = MeasureTrace(error)) readings.RmsError = Rounded(of->Rms, ErrorDigits);
  const std::vector<double> times(run.Times.begin() + from, run.Times.end());
  std::vector<double> squares;
  for (double& value : error) {
    value = std::abs(value);
    squares.push_back(value * value);
  }
  readings.Iae = Rounded(Integral(error, times), ErrorDigits);
  readings.Ise = Rounded(Integral(squares, times), ErrorDigits);
  readings.Window = Rounded(run.Times.back() - run.Times[jump], ErrorDigits);
}

}  // namespace

void CheckStep(ZelModel& model, const StepOptions& options) {
  NamedSignal(model.Bench(), options.Command);
  NamedSignal(model.Bench(), options.Response);
  if (!options.Peak.empty()) NamedSignal(model.Bench(), options.Peak);
}

StepRun ReadStep(const MakeModel& make, const StepOptions& options, Supervisor& supervisor,
                 RunReadings& readings) {
  StepRun run = RunOneStep(make, options, supervisor);
  if (!run.Reason.empty()) {
    readings.Reasons.push_back(run.Reason);
    return run;
  }
  const StepMeasures of = Measured(run);
  readings.Overshoot = Known(of.Overshoot);
  readings.Rise = Known(of.Rise);
  readings.Settling = Known(of.Settling);
  readings.Delay = Known(of.Delay);
  ReadError(run, readings);
  if (run.Peak) readings.Peak = Rounded(*run.Peak, ErrorDigits);
  const std::string gap = Reason(of.Gap());
  if (!gap.empty()) readings.Reasons.push_back(gap);
  return run;
}

void TakeTrace(const StepRun& run, StudyTrace& trace) {
  const std::size_t apart =
      std::max<std::size_t>(1, (run.Times.size() + trace.Points - 1) / trace.Points);
  for (std::size_t i = 0; i < run.Times.size(); i += apart) {
    trace.Times.push_back(static_cast<float>(run.Times[i] - run.Times.front()));
    trace.Values.push_back(static_cast<float>(run.Response[i]));
  }
}

}  // namespace torvane
