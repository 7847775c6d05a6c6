#include "models/experiment_reading.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

#include "core/constant.h"
#include "core/text.h"
#include "instruments/analyser/margins.h"
#include "instruments/fft/fft_analyser.h"
#include "instruments/generator/wave.h"
#include "instruments/scope/scope_math.h"

namespace torvane {

namespace {

std::string ConstantsOf(const ZelBenchTop& bench) {
  std::string text;
  for (const Constant* constant : bench.Constants()) text += constant->FileText() + ',';
  return text;
}

std::string GeneratorsOf(const ZelBenchTop& bench) {
  std::string text;
  for (const Instrument* instrument : bench.Instruments(InstrumentKind::WaveGenerator)) {
    const auto& wave = dynamic_cast<const ZelWave&>(*instrument);
    const WaveSettings& settings = wave.Settings();
    text += wave.WaveformText() + ',';
    for (const WaveNumber& number : ZelWave::Numbers()) {
      text += FormatShortest(settings.*number.Value) + ',';
    }
  }
  return text;
}

bool IsExcited(const ZelBenchTop& bench) {
  const auto measures = [](const Instrument* instrument) { return instrument->Measuring(); };
  const std::array kinds{InstrumentKind::FftAnalyser, InstrumentKind::SweptSine};
  return std::any_of(kinds.begin(), kinds.end(), [&](InstrumentKind kind) {
    const auto& analysers = bench.Instruments(kind);
    return std::any_of(analysers.begin(), analysers.end(), measures);
  });
}

ExperimentReading Gap(std::string why) {
  return {{}, false, std::move(why)};
}

ExperimentReading Present(double value) {
  return {value, true, {}};
}

const StepFigure* FigureOf(const StepMeasures& step, const std::string& reading) {
  const std::pair<const char*, const StepFigure&> figures[] = {{"Overshoot", step.Overshoot},
                                                               {"Rise", step.Rise},
                                                               {"Settling", step.Settling},
                                                               {"Delay", step.Delay}};
  for (const auto& [name, figure] : figures) {
    if (reading == name) return &figure;
  }
  return nullptr;
}

double ValueOf(const TraceMeasures& trace, const std::string& reading) {
  if (reading == "Mean") return trace.Mean;
  if (reading == "RMS") return trace.Rms;
  if (reading == "Minimum") return trace.Minimum;
  return reading == "Maximum" ? trace.Maximum : trace.PeakToPeak();
}

// Of a trace as recorded: a multiplier changes no frequency.
ExperimentReading ReadFrequency(const ZelScope& scope, const ScopeScreen& screen,
                                const ZelChannel& channel) {
  const auto& channels = scope.Channels();
  const auto found = std::find_if(channels.begin(), channels.end(),
                                  [&](const auto& each) { return each.get() == &channel; });
  const auto& trace = screen.Values[static_cast<std::size_t>(found - channels.begin())];
  const std::vector<double> values(trace.begin(), trace.end());
  const auto hz = MeasureFrequency(screen.Time, values);
  return hz ? Present(*hz) : Gap("less than two periods on the screen");
}

// Shown constants are what an analyser remembers of those that it measured with.
bool IsOfNow(const TraceOrigin& origin, const ZelBenchTop& bench) {
  return std::all_of(origin.Constants.begin(), origin.Constants.end(), [&](const auto& constant) {
    const Constant* now = bench.FindConst(constant.first);
    return now && now->DisplayText() == constant.second;
  });
}

}  // namespace

ExperimentReader::ExperimentReader(const Experiment& experiment, const ZelModel& model)
    : experiment_(experiment),
      model_(model),
      constants_(ConstantsOf(model.Bench())),
      generators_(GeneratorsOf(model.Bench())),
      anyChange_(model.Time()),
      generatorChange_(model.Time()) {
  for (const ExperimentStep& step : experiment_.Steps) {
    readings_.emplace_back(step.Answers.size());
    beyond_.push_back(experiment_.FirstSetAfter(beyond_.size()));
    // A later step may set back what the experiment begins with.
    std::erase_if(beyond_.back(), [&](const auto& setting) { return IsSet(setting, model_); });
  }
  Look();
}

// Why a step's answers cannot be read; empty when all that it needs is set.
std::string ExperimentReader::MissingFor(std::size_t step) const {
  const auto isMissing = [&](const ExperimentSetting& setting) { return !IsSet(setting, model_); };
  const auto& own = experiment_.Steps[step].Settings;
  if (std::any_of(own.begin(), own.end(), isMissing)) return "not set yet";
  const auto all = experiment_.SettingsAt(step);
  const auto other = std::find_if(all.begin(), all.end(), isMissing);
  if (other != all.end()) return "set " + other->Text();
  const auto& beyond = beyond_[step];
  const auto done = std::find_if(beyond.begin(), beyond.end(),
                                 [&](const auto& setting) { return IsSet(setting, model_); });
  return done == beyond.end() ? "" : "not with " + done->Text();
}

void ExperimentReader::Look() {
  const ZelBenchTop& bench = model_.Bench();
  std::string constants = ConstantsOf(bench);
  std::string generators = GeneratorsOf(bench);
  if (generators != generators_) generatorChange_ = model_.Time();
  // While it measures, an analyser's noise takes the place of the command.
  if (generators != generators_ || constants != constants_ || IsExcited(bench)) {
    anyChange_ = model_.Time();
  }
  constants_ = std::move(constants);
  generators_ = std::move(generators);
  for (std::size_t k = 0; k < readings_.size(); ++k) {
    const std::string missing = MissingFor(k);
    for (std::size_t i = 0; i < readings_[k].size(); ++i) {
      ExperimentReading read =
          missing.empty() ? Read(experiment_.Steps[k].Answers[i]) : Gap(missing);
      if (!read.Present) read.Value = readings_[k][i].Value;
      readings_[k][i] = std::move(read);
    }
  }
}

ExperimentReading ExperimentReader::Read(const ExperimentAnswer& answer) const {
  return answer.Signal.empty() ? ReadAnalyser(answer) : ReadScope(answer);
}

ExperimentReading ExperimentReader::ReadScope(const ExperimentAnswer& answer) const {
  const auto& scopes = model_.Bench().Instruments(InstrumentKind::Scope);
  if (scopes.empty()) return Gap("there is no scope");
  const auto& scope = dynamic_cast<const ZelScope&>(*scopes.front());
  ScopeScreen screen;
  scope.CopyScreen(ScopeSweep::Whole, screen);
  if (screen.PointCount() < scope.ScreenLength() || screen.Left < anyChange_)
    return Gap("not run yet");
  for (const ChannelMeasures& of : MeasureWholeScreen(scope, screen)) {
    if (of.Channel->Name() != answer.Signal) continue;
    if (answer.Reading == "Frequency") return ReadFrequency(scope, screen, *of.Channel);
    const StepFigure* figure = of.Step ? FigureOf(*of.Step, answer.Reading) : nullptr;
    if (figure)
      return figure->Gap == StepGap::None ? Present(figure->Value) : Gap(Reason(figure->Gap));
    if (of.Trace) return Present(ValueOf(*of.Trace, answer.Reading));
  }
  return Gap(answer.Signal + " is not on the scope");
}

ExperimentReading ExperimentReader::ReadAnalyser(const ExperimentAnswer& answer) const {
  const auto& analysers = model_.Bench().Instruments(InstrumentKind::FftAnalyser);
  if (analysers.empty()) return Gap("there is no analyser");
  const auto& analyser = dynamic_cast<const FrequencyAnalyser&>(*analysers.front());
  if (!analyser.HasData(0) || analyser.OutputOnly()) return Gap("not measured yet");
  const TraceOrigin& origin = analyser.Origin(0);
  if (!IsOfNow(origin, model_.Bench()) || origin.Time < generatorChange_)
    return Gap("not measured yet");
  const auto& doubts = analyser.ResponseAt(0).Doubts();
  if (!doubts.empty()) return Gap("doubtful: " + doubts.front());
  if (answer.AtHz) {
    const auto value = answer.Reading == "Gain" ? analyser.GainRead(0, *answer.AtHz)
                                                : analyser.PhaseRead(0, *answer.AtHz);
    return value ? Present(*value) : Gap("nothing is measured there");
  }
  MarginReader reader;
  const Margins& margins = reader.Read(analyser, 0);
  const Margins::Reading* smallest = answer.Reading.starts_with("Phase")
                                         ? margins.SmallestPhaseMargin()
                                         : margins.SmallestGainMargin();
  if (!smallest) return Gap(margins.Missing.empty() ? "it has none" : margins.Missing.front());
  return Present(answer.Reading.ends_with("Frequency") ? smallest->Hz : smallest->Value);
}

}  // namespace torvane
