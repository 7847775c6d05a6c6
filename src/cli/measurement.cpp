#include "cli/measurement.h"

#include <CLI/CLI.hpp>

#include "cli/command_error.h"
#include "cli/number_options.h"
#include "cli/scope_run.h"
#include "core/csv.h"
#include "core/text.h"
#include "instruments/analyser/margins.h"
#include "instruments/scope/scope_math.h"

namespace torvane::cli {
namespace {

std::string Field(const std::optional<double>& value) {
  return value ? FormatShortest(*value) : "";
}

std::vector<std::string> StepFields(const ResponseMeasures& measures) {
  const auto step = [&](double StepMeasures::*of) {
    return measures.Step ? FormatShortest((*measures.Step).*of) : "";
  };
  return {step(&StepMeasures::OvershootPercent), step(&StepMeasures::RiseTime),
          step(&StepMeasures::SettlingTime), step(&StepMeasures::Delay), Field(measures.RmsError)};
}

// As the desktop reads them: the margins of a closed response are those of the open loop that it
// has if its feedback is its output.
std::vector<std::string> MarginFields(FrequencyAnalyser& analyser) {
  const auto value = [](const Margins::Reading* reading) {
    return reading ? FormatShortest(reading->Value) : "";
  };
  MarginReader reader;
  const Margins& response = reader.Read(analyser, 0);
  const bool closed = response.Closed;
  std::vector<std::string> fields{Field(response.GainBandwidth),
                                  value(response.Peaking ? &*response.Peaking : nullptr)};
  const Margins& open = closed ? reader.Read(analyser, 0, true) : response;
  fields.push_back(value(open.SmallestGainMargin()));
  fields.push_back(value(open.SmallestPhaseMargin()));
  return fields;
}

ZelXfer& SetUpAnalyser(ZelModel& model, const BodeOptions& options, Console& console) {
  auto& xfer = dynamic_cast<ZelXfer&>(
      ChooseAnalyser(model.Bench(), InstrumentKind::FftAnalyser, options.Response));
  // Margins are read off a response.
  xfer.SetSpectrum(false);
  console.ApplySettings([&] { SetUp(xfer, options); });
  return xfer;
}

std::unique_ptr<ZelModel> MakeFirst(const MakeModel& make) {
  std::unique_ptr<ZelModel> model = make();
  model->DropClassMemory();
  return model;
}

}  // namespace

void AddMeasureOptions(CLI::App& command, MeasureOptions& options) {
  BodeOptions& bode = options.Bode;
  command.add_option("--command", bode.Response.Input, "Signal that is to be followed")
      ->type_name("SIGNAL");
  command.add_option("--response", bode.Response.Output, "Signal that follows it")
      ->type_name("SIGNAL");
  AddNumber(command, "--until", options.Until, NumberRange::Positive,
            "Simulated time of a run, seconds; the scope's last complete screen is measured");
  CLI::Option* const withBode =
      command.add_flag("--bode", options.WithBode,
                       "Measure bandwidth, peaking, gain and phase margin as well, with the FFT "
                       "analyser in a run of its own");
  const std::size_t before = command.get_options().size();
  AddRecordOptions(command, bode);
  AddExcitationOptions(command, bode.Response);
  const std::vector<CLI::Option*> all = command.get_options();
  for (std::size_t k = before; k < all.size(); ++k) all[k]->needs(withBode);
  AddModelSettings(command, bode.Response.Model);
}

std::vector<std::string> MeasureCaptions(const MeasureOptions& options) {
  std::vector<std::string> captions{"Overshoot", "Rise", "Settling", "Delay", "RMS Error"};
  if (options.WithBode) Append(captions, {"Bandwidth", "Peaking", "Gain Margin", "Phase Margin"});
  return captions;
}

std::string MeasureUnit(const std::string& caption) {
  if (caption == "Overshoot") return "%";
  if (caption == "RMS Error") return "the command's unit";
  if (caption == "Bandwidth") return "Hz";
  if (caption == "Phase Margin") return "deg";
  return caption == "Peaking" || caption == "Gain Margin" ? "dB" : "s";
}

void CheckMeasurement(ZelModel& model, const MeasureOptions& options, Console& console) {
  const ResponseOptions& response = options.Bode.Response;
  if (response.Input.empty()) throw UsageError("--command is required");
  if (response.Output.empty()) throw UsageError("--response is required");
  if (!(options.Until > 0.0)) throw UsageError("--until is required");
  FirstScope(model.Bench());
  NamedSignal(model.Bench(), response.Input);
  NamedSignal(model.Bench(), response.Output);
  if (options.WithBode) SetUpAnalyser(model, options.Bode, console);
}

RunMeasures MeasureRun(const MakeModel& make, const MeasureOptions& options, Console& console,
                       bool showProgress) {
  const ResponseOptions& response = options.Bode.Response;
  RunMeasures measures;
  auto model = MakeFirst(make);
  ZelScope& scope = FirstScope(model->Bench());
  measures.Screen = LastCompleteScreen(*model, scope, options.Until, console, showProgress);
  measures.Fields = StepFields(MeasureResponse(scope, measures.Screen,
                                               NamedSignal(model->Bench(), response.Input),
                                               NamedSignal(model->Bench(), response.Output)));
  if (!options.WithBode) return measures;
  model = MakeFirst(make);
  ZelXfer& xfer = SetUpAnalyser(*model, options.Bode, console);
  MeasureResponse(*model, xfer, console, showProgress);
  Append(measures.Fields, MarginFields(xfer));
  return measures;
}

}  // namespace torvane::cli
