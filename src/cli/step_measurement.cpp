#include "cli/step_measurement.h"

#include "cli/model_options.h"
#include "cli/scope_run.h"
#include "core/text.h"
#include "instruments/scope/scope_math.h"

namespace torvane::cli {
namespace {

std::vector<std::string> StepFields(const ResponseMeasures& measures) {
  const auto step = [&](double StepMeasures::*of) {
    return measures.Step ? FormatShortest((*measures.Step).*of) : "";
  };
  return {step(&StepMeasures::OvershootPercent), step(&StepMeasures::RiseTime),
          step(&StepMeasures::SettlingTime), step(&StepMeasures::Delay),
          measures.RmsError ? FormatShortest(*measures.RmsError) : ""};
}

}  // namespace

std::vector<std::string> StepCaptions() {
  return {"Overshoot", "Rise", "Settling", "Delay", "RMS Error"};
}

void CheckStep(ZelModel& model, const StepOptions& options) {
  FirstScope(model.Bench());
  NamedSignal(model.Bench(), options.Command);
  NamedSignal(model.Bench(), options.Response);
}

MeasuredStep MeasureStep(const MakeModel& make, const StepOptions& options, Console& console,
                         bool showProgress) {
  const auto model = MakeFirst(make);
  ZelScope& scope = FirstScope(model->Bench());
  MeasuredStep measured;
  measured.Screen = LastCompleteScreen(*model, scope, options.Until, console, showProgress);
  measured.Fields = StepFields(MeasureResponse(scope, measured.Screen,
                                               NamedSignal(model->Bench(), options.Command),
                                               NamedSignal(model->Bench(), options.Response)));
  return measured;
}

}  // namespace torvane::cli
