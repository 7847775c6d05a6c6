#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/constant.h"
#include "core/model.h"
#include "instruments/fft/fft_analyser.h"
#include "library/wave.h"
#include "models/catalogue.h"
#include "support/recorder.h"

namespace torvane::test {

/// Constants by name and the text that each is set to.
using Settings = std::vector<std::pair<std::string, std::string>>;

/// A built-in model of which a test sets signals and samples by hand. What was reported while it
/// lived fails the test.
class Loop {
 public:
  explicit Loop(const std::string& name, const Settings& settings = {})
      : model_(LoadModel(FindModel(name))) {
    Set(settings);
  }
  ~Loop() { EXPECT_EQ(messages_.Take(), Messages{}); }
  Loop(const Loop&) = delete;
  Loop& operator=(const Loop&) = delete;

  ZelModel& Model() { return *model_; }
  ZelBenchTop& Bench() { return model_->Bench(); }

  void Set(const Settings& settings) {
    for (const auto& [name, text] : settings) {
      Constant* constant = Bench().FindConst(name);
      ASSERT_TRUE(constant) << name;
      ASSERT_TRUE(constant->SetFromText(text)) << name;
    }
  }

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
    for (StateVariable* state : model_->Solver().States()) {
      if (state->Name() == "ZelWave #1" && generator-- == 0) state->Value = value;
    }
  }

  /// The equations at time t, at which a sample is due when the clock says so.
  void Sample(double t) {
    Bench().UpdateTimeDriven(t);
    model_->Derivatives(t);
  }

  /// Runs without instruments.
  void Run(double until) { model_->Solver().RunUntil(until); }

 private:
  Recorder messages_;
  std::unique_ptr<ZelModel> model_;
};

/// Leaves in the memory of the model's class what a model at rest leaves. 5-1 cannot go back to an
/// earlier sample: its next one is put off.
inline void BringClassToRest(const std::string& model) {
  Loop loop(model);
  if (model.starts_with("16-2")) {  // a command empties the integral
    loop.Set({{"Zero on Move?", "Yes"}});
    loop.Generate(1.0);
    loop.Sample(0.0);
    loop.Generate(0.0);
    loop["pC"] = 0.0;
  }
  if (model.starts_with("5-2")) {  // rounded to nothing
    loop.Set({{"Pole", "0.001"}, {"Res", "100"}});
  }
  if (model.starts_with("5-1")) loop.Set({{"TSample", "100"}});
  for (const double t : {0.0, 0.01, 0.02}) loop.Sample(t);
}

}  // namespace torvane::test
