// What an experiment asks to be set.

#include <algorithm>
#include <array>
#include <iterator>
#include <set>

#include "core/constant.h"
#include "core/files/model_file.h"
#include "core/files/model_file_lines.h"
#include "core/text.h"
#include "instruments/fft/fft_analyser.h"
#include "instruments/generator/wave.h"
#include "models/experiment.h"

namespace torvane {

namespace {

bool ApplyTo(Constant& constant, const std::string& value) {
  return constant.SetFromText(value) &&
         (constant.IsList() || constant.Value() == ParseNumber(value));
}

bool ApplyTo(ZelWave& wave, const ExperimentSetting& setting) {
  if (setting.Name == "Waveform") {
    const auto& names = ZelWave::WaveformNames();
    const auto found = std::find(names.begin(), names.end(), setting.Value);
    if (found == names.end()) return false;
    wave.SetWaveform(static_cast<int>(found - names.begin()));
    return true;
  }
  const auto value = ParseNumber(setting.Value);
  for (const WaveNumber& number : ZelWave::Numbers()) {
    if (setting.Name != number.Caption || !value) continue;
    (wave.*number.Set)(*value);
    return wave.Settings().*number.Value == *value;
  }
  return false;
}

bool ApplyTo(ZelXfer& analyser, const ExperimentSetting& setting) {
  if (setting.Name == "Input") return analyser.SetInput(setting.Value);
  if (setting.Name == "Output") return analyser.SetOutput(setting.Value);
  const auto value = ParseNumber(setting.Value);
  if (!value) return false;
  FftSetup setup = analyser.Setup();
  if (setting.Name == "FFT Order") {
    setup.Order = static_cast<int>(*value);
  } else if (setting.Name == "Sample Time") {
    setup.TSample = *value;
  } else if (setting.Name == "Amplitude") {
    setup.Amplitude = *value;
  } else {
    return false;
  }
  return analyser.Apply(setup);
}

bool Has(const Constant& constant, const std::string& value) {
  return constant.IsList() ? constant.DisplayText() == value
                           : constant.Value() == ParseNumber(value);
}

bool Has(const ZelWave& wave, const ExperimentSetting& setting) {
  if (setting.Name == "Waveform") return !wave.Played() && wave.WaveformText() == setting.Value;
  const auto& numbers = ZelWave::Numbers();
  return std::any_of(numbers.begin(), numbers.end(), [&](const WaveNumber& number) {
    return setting.Name == number.Caption &&
           ParseNumber(setting.Value) == wave.Settings().*number.Value;
  });
}

bool Has(const ZelXfer& analyser, const ExperimentSetting& setting) {
  const auto isChannel = [&](const AnalyserChannel* channel) {
    return channel && channel->Name() == setting.Value;
  };
  const auto value = ParseNumber(setting.Value);
  const FftSetup setup = analyser.Setup();
  if (setting.Name == "Input") return isChannel(analyser.Input());
  if (setting.Name == "Output") return isChannel(analyser.Output());
  if (setting.Name == "FFT Order") return value == setup.Order;
  if (setting.Name == "Sample Time") return value == setup.TSample;
  return setting.Name == "Amplitude" && value == setup.Amplitude;
}

/// What of a model a setting is about; one of the three, or none.
struct Subject {
  Constant* Number = nullptr;
  ZelWave* Generator = nullptr;
  ZelXfer* Analyser = nullptr;
};

Subject SubjectOf(const ExperimentSetting& setting, const ZelBenchTop& bench) {
  Subject of;
  if (setting.Of == "Analyser") {
    const auto& analysers = bench.Instruments(InstrumentKind::FftAnalyser);
    if (!analysers.empty()) of.Analyser = &dynamic_cast<ZelXfer&>(*analysers.front());
    return of;
  }
  if (setting.Of.empty()) of.Number = bench.FindConst(setting.Name);
  if (of.Number) return of;
  const auto& generators = bench.Instruments(InstrumentKind::WaveGenerator);
  Instrument* generator = setting.Of.empty() && !generators.empty()
                              ? generators.front()
                              : bench.FindInstrument(InstrumentKind::WaveGenerator, setting.Of);
  of.Generator = dynamic_cast<ZelWave*>(generator);
  return of;
}

/// How the line of a model file begins that holds the setting.
std::string RecordOf(const ExperimentSetting& setting, const ZelBenchTop& bench) {
  static constexpr std::array<std::array<const char*, 2>, 5> analysers{
      {{"Input", "InputChannel"},
       {"Output", "OutputChannel"},
       {"FFT Order", "Order"},
       {"Sample Time", "tSample"},
       {"Amplitude", "ExAmplitude"}}};
  const Subject of = SubjectOf(setting, bench);
  if (of.Number) return "Constant," + setting.Name + ',';
  std::string keyword = setting.Name;
  if (of.Generator) {
    for (const WaveNumber& number : ZelWave::Numbers()) {
      if (setting.Name == number.Caption) keyword = number.Name;
    }
    return "WaveGen," + of.Generator->Name() + ',' + keyword + ',';
  }
  for (const auto& [caption, name] : analysers) {
    if (setting.Name == caption) keyword = name;
  }
  return "Xfer," + (of.Analyser ? of.Analyser->Name() : "") + ',' + keyword + ',';
}

std::multiset<std::string> LinesOf(const std::string& text) {
  std::multiset<std::string> lines;
  LineReader reader(text);
  for (std::string line; reader.Next(line);) lines.insert(line);
  return lines;
}

}  // namespace

bool Apply(const ExperimentSetting& setting, ZelModel& model) {
  const Subject of = SubjectOf(setting, model.Bench());
  if (of.Number) return ApplyTo(*of.Number, setting.Value);
  if (of.Generator) return ApplyTo(*of.Generator, setting);
  return of.Analyser && ApplyTo(*of.Analyser, setting);
}

bool IsSet(const ExperimentSetting& setting, const ZelModel& model) {
  const Subject of = SubjectOf(setting, model.Bench());
  if (of.Number) return Has(*of.Number, setting.Value);
  if (of.Generator) return Has(*of.Generator, setting);
  return of.Analyser && Has(*of.Analyser, setting);
}

bool OnlyProposed(const Experiment& experiment, const std::string& former, const ZelModel& model) {
  std::vector<std::string> proposed;
  const auto propose = [&](const std::vector<ExperimentSetting>& settings) {
    for (const ExperimentSetting& setting : settings) {
      if (IsSet(setting, model)) proposed.push_back(RecordOf(setting, model.Bench()));
    }
  };
  propose(experiment.SetUp);
  propose(experiment.Tries);
  for (const ExperimentStep& step : experiment.Steps) propose(step.Settings);
  const auto before = LinesOf(former);
  const auto now = LinesOf(SettingsText(model));
  std::vector<std::string> differing;
  std::set_symmetric_difference(before.begin(), before.end(), now.begin(), now.end(),
                                std::back_inserter(differing));
  return std::all_of(differing.begin(), differing.end(), [&](const std::string& line) {
    return std::any_of(proposed.begin(), proposed.end(),
                       [&](const std::string& record) { return line.starts_with(record); });
  });
}

}  // namespace torvane
