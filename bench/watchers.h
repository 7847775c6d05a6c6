#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "core/run_loop.h"
#include "instruments/analyser/analyser.h"
#include "instruments/meter/meter.h"
#include "instruments/scope/scope.h"
#include "models/catalogue.h"

namespace torvane::bench {

/// Whose run loops are watched.
inline constexpr const char* WatchedModels[] = {"2-1 PI+ Controller", "3-1 PI Controller",
                                                "6-1 PID Controller", "15-1 Resonance"};

/// The instruments of one row: what watching costs is a model's run loop with these and no others.
/// Analysers and meters stand beside a scope, as on the desktop: between two points a sweep leaves
/// it to the others when to stop.
struct Watchers {
  const char* Name;
  std::size_t Traces = 1;
  int Meters = 0;
  bool Fft = false;
  bool Swept = false;
};

inline constexpr Watchers WatchRows[] = {
    {"nothing", 0},
    {"scope_1_trace"},
    {"scope_8_traces", 8},
    {"scope_and_fft", 1, 0, true},
    {"scope_and_swept_sine", 1, 0, false, true},
    {"scope_and_both_analysers", 1, 0, true, true},
    {"scope_and_1_meter", 1, 1},
    {"scope_and_5_meters", 1, 5},
    {"scope_and_10_meters", 1, 10},
    {"scope_and_15_meters", 1, 15},
};

/// A model under watch.
class Watched {
 public:
  static constexpr int StepsPerTurn = 20000;

  Watched(const char* model, const Watchers& watchers)
      : watchers_(watchers), model_(LoadModel(FindModel(model))) {
    SetUpScope();
    for (int i = 0; i < watchers.Meters; ++i) {
      meters_.push_back(std::make_unique<ZelMeter>(model_->Bench(), "Meter " + std::to_string(i)));
    }
    model_->Bench().StartScopes();
  }

  /// Runs so many steps. Whoever has finished measures again; without an instrument a pass has
  /// nothing to end it but the time that it is given.
  void Turn() {
    if (watchers_.Fft) KeepMeasuring(InstrumentKind::FftAnalyser);
    if (watchers_.Swept) KeepMeasuring(InstrumentKind::SweptSine);
    const double until = model_->Time() + StepsPerTurn * model_->Solver().Step();
    while (model_->Time() < until) RunPass(*model_, {}, until);
  }
  double Time() const { return model_->Time(); }

 private:
  void SetUpScope() {
    auto& scope =
        dynamic_cast<ZelScope&>(*model_->Bench().Instruments(InstrumentKind::Scope).front());
    if (watchers_.Traces == 0) {
      model_->Bench().RemoveInstrument(scope);
      return;
    }
    for (std::size_t i = 0; i < scope.Channels().size(); ++i) {
      scope.SetDisplayed(*scope.Channels()[i], i < watchers_.Traces);
    }
  }

  void KeepMeasuring(InstrumentKind kind) {
    auto& analyser = dynamic_cast<FrequencyAnalyser&>(*model_->Bench().Instruments(kind).front());
    if (!analyser.Measuring()) analyser.Run();
  }

  const Watchers& watchers_;
  std::unique_ptr<ZelModel> model_;
  std::vector<std::unique_ptr<ZelMeter>> meters_;
};

}  // namespace torvane::bench
