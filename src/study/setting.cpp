#include "study/setting.h"

#include <algorithm>

#include "core/names.h"
#include "core/text.h"
#include "study/study_fault.h"

namespace torvane {
namespace {

constexpr const char* WaveformKey = "Waveform";

StudyFault UnknownName(const std::string& what, const std::string& text,
                       const std::vector<std::string>& names) {
  return StudyFault(UnknownNameText(what, text, names));
}

}  // namespace

ZelWave& AddressedGenerator(const ZelBenchTop& bench, std::string& name) {
  const auto& generators = bench.Instruments(InstrumentKind::WaveGenerator);
  if (generators.empty()) throw StudyFault("the model has no waveform generator");
  Instrument* generator = generators.front();
  const auto colon = name.rfind(':');
  if (colon != std::string::npos) {
    const std::string wanted = name.substr(0, colon);
    generator = bench.FindInstrument(InstrumentKind::WaveGenerator, wanted);
    if (!generator) {
      std::vector<std::string> names;
      names.reserve(generators.size());
      for (const Instrument* other : generators) names.push_back(other->Name());
      throw UnknownName("generator", wanted, names);
    }
    name.erase(0, colon + 1);
  }
  return dynamic_cast<ZelWave&>(*generator);
}

namespace {

std::vector<std::string> GeneratorKeys() {
  std::vector<std::string> names{WaveformKey};
  for (const WaveNumber& known : ZelWave::Numbers()) names.emplace_back(known.Name);
  return names;
}

std::vector<std::string> ConstantNames(const ZelBenchTop& bench) {
  std::vector<std::string> names;
  for (const Constant* constant : bench.Constants()) names.push_back(constant->Name());
  return names;
}

}  // namespace

ModelSetting ModelSetting::OfConstant(const ZelBenchTop& bench, const std::string& name) {
  Constant* const constant = bench.FindConst(name);
  if (!constant) throw UnknownName("constant", name, ConstantNames(bench));
  ModelSetting setting(name, constant->Choices());
  setting.constant_ = constant;
  return setting;
}

ModelSetting ModelSetting::OfGenerator(const ZelBenchTop& bench, const std::string& name) {
  std::string key = name;
  ZelWave& generator = AddressedGenerator(bench, key);
  ModelSetting setting(key, {});
  setting.generator_ = &generator;
  if (key == WaveformKey) {
    const auto& waveforms = ZelWave::WaveformNames();
    setting.choices_.assign(waveforms.begin(), waveforms.end());
    return setting;
  }
  for (const WaveNumber& number : ZelWave::Numbers()) {
    if (key == number.Name) setting.number_ = &number;
  }
  if (!setting.number_) throw UnknownName("generator setting", key, GeneratorKeys());
  return setting;
}

ModelSetting ModelSetting::Named(const ZelBenchTop& bench, const std::string& name) {
  if (bench.FindConst(name)) return OfConstant(bench, name);
  std::vector<std::string> names = GeneratorKeys();
  if (name.find(':') != std::string::npos || IndexOfName(name, names) >= 0) {
    return OfGenerator(bench, name);
  }
  for (std::string& constant : ConstantNames(bench)) names.push_back(std::move(constant));
  throw UnknownName("constant or generator setting", name, names);
}

void ModelSetting::Set(const std::string& text) {
  const int named = IndexOfName(text, choices_);
  if (named >= 0) {
    wanted_ = named;
  } else if (choices_.empty()) {
    const std::optional<double> number = ParseNumber(text);
    if (!number) throw StudyFault(name_ + " needs a number, not \"" + text + "\"");
    wanted_ = *number;
  } else {
    const std::optional<int> index = ParseInteger(text);
    if (!index) throw UnknownName(name_, text, choices_);
    wanted_ = *index;
  }
  Store(wanted_);
}

void ModelSetting::Store(double value) {
  if (constant_) {
    constant_->Set(value);
  } else if (number_) {
    (generator_->*number_->Set)(value);
  } else {
    generator_->SetWaveform(static_cast<int>(value));
  }
}

double ModelSetting::Value() const {
  if (constant_) return constant_->Value();
  const WaveSettings& settings = generator_->Settings();
  return number_ ? settings.*number_->Value : settings.Index;
}

std::string ModelSetting::Text() const {
  const double value = Value();
  return choices_.empty() ? FormatShortest(value) : choices_[static_cast<std::size_t>(value)];
}

std::string ModelSetting::Unit() const {
  if (constant_) return constant_->Unit();
  if (!number_) return {};
  if (number_->Value == &WaveSettings::FreqHz) return "Hz";
  if (number_->Value == &WaveSettings::PhaseDeg) return "deg";
  return number_->Value == &WaveSettings::DutyCycle ? "%" : "";
}

std::string ModelSetting::Remark() const {
  if (Value() == wanted_) return {};
  const std::string choice = choices_.empty() ? "" : FormatShortest(Value()) + " (" + Text() + ")";
  return name_ + " is limited to " + (choice.empty() ? Text() : choice);
}

}  // namespace torvane
