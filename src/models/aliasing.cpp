#include "core/constant.h"
#include "instruments/generator/wave.h"
#include "instruments/scope/scope.h"
#include "kit/fused_model.h"
#include "kit/loop_parts.h"
#include "models/factories.h"

namespace torvane {

namespace {

struct MAliasingMemory {
  double NextSample = 0.0;

  void Carry(Carried& carried) { carried.Keep(NextSample); }
};

/// A bare sample-and-hold: shows the alias of a signal that is sampled too slowly.
///
///     vC -> sample and hold -> vSample
class MAliasing final : public FusedModel<MAliasing, MAliasingMemory> {
 public:
  explicit MAliasing(const std::string& name);
  void Carry(Carried& carried) override {
    FusedModel::Carry(carried);
    carried.Period(tSample_.Value());
  }

  struct Loop {
    double vC = 0, vSample = 0;
  };
  Loop loop_;

  void Equations(Loop& s, double t);
  auto Parts(Loop& /*s*/) { return std::tie(generator_); }

 private:
  MAliasingMemory FirstMemory() const override { return {Bench().Time()}; }

  Constant tSample_{Bench(), "TSample", "Sec", Adjustable(0.001, 0.0001, 100),
                    "Time between two samples"};

  Signals signals_{Bench(),
                   {{loop_.vC, "vC", "volts", Shown(1, 2), "The signal before it is sampled"},
                    {loop_.vSample, "vSample", "volts", Shown(1, -2),
                     "The signal as sampled: it holds between two samples"}}};

  // Sampled at 1000 Hz, 1030 Hz show up at 30 Hz.
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 0, .FreqHz = 1030, .Amplitude = 1.5}};
  ZelScope scope_{Bench(), "MainScope"};
};

MAliasing::MAliasing(const std::string& name) : FusedModel(name, 1e-5) {
  SetFiles("BWTX05-01.bmp", "BWTX05-01.txt");
  // The alias stands still when the sweep starts on it.
  scope_.Trigger().SetSource(*scope_.FindChannel("vSample"));
  scope_.SetHorizontalScale(scope_.TimeChannel(), 0.01);
}

void MAliasing::Equations(Loop& s, double t) {
  s.vC = generator_.Output();
  if (t > memory_.NextSample) {
    s.vSample = s.vC;
    memory_.NextSample += tSample_.Value();
  }
}

}  // namespace

std::unique_ptr<ZelModel> MakeAliasing(const std::string& name) {
  return std::make_unique<MAliasing>(name);
}

}  // namespace torvane
