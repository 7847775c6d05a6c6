// Setting what an experiment asks for.

#include <algorithm>

#include "core/constant.h"
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

}  // namespace

bool Apply(const ExperimentSetting& setting, ZelModel& model) {
  ZelBenchTop& bench = model.Bench();
  if (setting.Of == "Analyser") {
    const auto& analysers = bench.Instruments(InstrumentKind::FftAnalyser);
    return !analysers.empty() && ApplyTo(dynamic_cast<ZelXfer&>(*analysers.front()), setting);
  }
  if (setting.Of.empty()) {
    if (Constant* constant = bench.FindConst(setting.Name))
      return ApplyTo(*constant, setting.Value);
  }
  const auto& generators = bench.Instruments(InstrumentKind::WaveGenerator);
  Instrument* generator = setting.Of.empty() && !generators.empty()
                              ? generators.front()
                              : bench.FindInstrument(InstrumentKind::WaveGenerator, setting.Of);
  return generator && ApplyTo(dynamic_cast<ZelWave&>(*generator), setting);
}

}  // namespace torvane
