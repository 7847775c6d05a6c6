#include "workbench/measure/step_measurement.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <span>
#include <vector>

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

// Of a function of a trace that is drawn straight from row to row.
template <class Of>
double Integral(std::span<const double> values, std::span<const double> times, Of of) {
  double sum = 0.0;
  for (std::size_t i = 1; i < values.size(); ++i) {
    sum += 0.5 * (of(values[i - 1]) + of(values[i])) * (times[i] - times[i - 1]);
  }
  return sum;
}

// Of command less response, from the jump on, and over how long.
void ReadError(const StepRun& run, RunReadings& readings) {
  const std::size_t jump = run.Before + 1;
  const auto times = std::span(run.Times).subspan(jump);
  std::vector<double> error(times.size());
  std::transform(run.Command.end() - std::ssize(error), run.Command.end(),
                 run.Response.end() - std::ssize(error), error.begin(), std::minus());
  if (const auto of = MeasureTrace(error)) readings.RmsError = Rounded(of->Rms, ErrorDigits);
  const auto magnitude = [](double value) { return std::abs(value); };
  const auto square = [](double value) { return value * value; };
  readings.Iae = Rounded(Integral(error, times, magnitude), ErrorDigits);
  readings.Ise = Rounded(Integral(error, times, square), ErrorDigits);
  readings.Window = Rounded(times.back() - times.front(), ErrorDigits);
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
  const StepMeasures& of = run.Measures;
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
