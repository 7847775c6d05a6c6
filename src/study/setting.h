#pragma once

#include <string>
#include <vector>

#include "core/bench.h"
#include "core/constant.h"
#include "instruments/generator/wave.h"

namespace torvane {

/// A constant or a generator's setting of a model, found by its name. A name that is none, or a
/// value that cannot be understood, is a StudyFault.
class ModelSetting {
 public:
  static ModelSetting OfConstant(const ZelBenchTop& bench, const std::string& name);
  /// Waveform, Amplitude, FreqHz, Offset, PhaseDeg or DutyCycle of the model's first generator;
  /// "GENERATOR:KEY" addresses one by name.
  static ModelSetting OfGenerator(const ZelBenchTop& bench, const std::string& name);
  /// The constant of that name or else the generator's setting.
  static ModelSetting Named(const ZelBenchTop& bench, const std::string& name);

  /// Sets a number or, of what has choices, a choice's text or index. What is outside the limits is
  /// limited.
  void Set(const std::string& text);

  /// It takes one of some texts.
  bool IsChoice() const { return !choices_.empty(); }

  /// Of a constant its unit, of a generator's frequency, phase or duty cycle theirs; else empty.
  std::string Unit() const;
  /// The value that it has, as Set would take it.
  std::string Text() const;
  /// "NAME is limited to VALUE" when it does not have the value that was set last; else empty.
  std::string Remark() const;

 private:
  ModelSetting(std::string name, std::vector<std::string> choices)
      : name_(std::move(name)), choices_(std::move(choices)) {}
  double Value() const;
  void Store(double value);

  std::string name_;
  std::vector<std::string> choices_;  ///< none of a number
  Constant* constant_ = nullptr;
  ZelWave* generator_ = nullptr;
  const WaveNumber* number_ = nullptr;  ///< of the generator; nullptr for the waveform
  double wanted_ = 0.0;
};

/// The model's first generator or, of "GENERATOR:KEY", the named one, which is taken off the name.
/// None of that name is a StudyFault.
ZelWave& AddressedGenerator(const ZelBenchTop& bench, std::string& name);

}  // namespace torvane
