#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/constant.h"
#include "core/model.h"
#include "instruments/fft/fft_analyser.h"
#include "instruments/generator/wave.h"
#include "models/catalogue.h"
#include "models/catalogue_host.h"
#include "support/recorder.h"

namespace torvane::test {

/// Constants by name and the text that each is set to.
using Settings = std::vector<std::pair<std::string, std::string>>;

constexpr double SamplePeriod = 0.00025;  ///< of the sampled loops by default
constexpr double RpmToRad = 0.10471975333333333;

/// A built-in model of which a test sets signals and samples by hand. What was reported while it
/// lived fails the test.
class Loop {
 public:
  /// Whether the model's class remembers what its last model left.
  enum class ClassMemory { None, Kept };

  explicit Loop(const std::string& name, const Settings& settings = {},
                ClassMemory memory = ClassMemory::None) {
    if (memory == ClassMemory::None) LoadModel(FindModel(name))->ResetEverything();
    host_.Model = LoadModel(FindModel(name));
    Set(settings);
  }
  ~Loop() { EXPECT_EQ(messages_.Take(), Messages{}); }
  Loop(const Loop&) = delete;
  Loop& operator=(const Loop&) = delete;

  ZelModel& Model() { return *host_.Model; }
  ZelBenchTop& Bench() { return Model().Bench(); }

  void Set(const Settings& settings) {
    for (const auto& [name, text] : settings) Load("Constant," + name + "," + text + "\n");
  }
  /// Takes lines of a model file.
  void Load(const std::string& lines) { EXPECT_TRUE(LoadModelText(lines, host_)) << lines; }

  /// Value of a signal, to be read or written.
  double& operator[](const std::string& signal) { return Bench().FindVar(signal)->Value; }
  double Slope(const std::string& state) {
    return dynamic_cast<StateVariable&>(*Bench().FindVar(state)).Derivative;
  }

  template <class Kind>
  Kind& The(InstrumentKind kind, std::size_t index = 0) {
    return dynamic_cast<Kind&>(*Bench().Instruments(kind).at(index));
  }
  ZelXfer& Fft() { return The<ZelXfer>(InstrumentKind::FftAnalyser); }

  /// Lets a generator put out this value from now on.
  void Generate(double value, std::size_t generator = 0) {
    auto& wave = The<ZelWave>(InstrumentKind::WaveGenerator, generator);
    wave.SetWaveform(static_cast<int>(Waveform::Dc));
    wave.SetOffset(value);
    for (StateVariable* state : Model().Solver().States()) {
      if (state->Name() == "ZelWave #1" && generator-- == 0) state->Value = value;
    }
  }

  /// The equations at time t, at which a sample is due when the clock says so.
  void Sample(double t) {
    Bench().UpdateTimeDriven(t);
    Model().Derivatives(t);
  }

  /// Runs without instruments.
  void Run(double until) { Model().Solver().RunUntil(until); }

  /// Lets the FFT analyser measure to its end, alone.
  ZelXfer& Measure() {
    ZelXfer& fft = The<ZelXfer>(InstrumentKind::FftAnalyser);
    fft.Run();
    while (fft.Measuring()) {
      Run(fft.NextTime());
      fft.Service(Model().Time());
    }
    return fft;
  }

 private:
  Recorder messages_;
  CatalogueHost host_;
};

/// Every signal's value.
inline std::vector<double> Values(const ZelModel& model) {
  std::vector<double> values;
  for (const Variable* variable : model.Bench().Variables()) values.push_back(variable->Value);
  return values;
}

}  // namespace torvane::test
