#include "core/constant.h"
#include "instruments/scope/scope.h"
#include "library/wave.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/loop_parts.h"

namespace torvane {

namespace {

// Class memory.
double nextSample = 0.0;

/// A bare sample-and-hold: shows the alias of a signal that is sampled too slowly.
///
///     vC -> sample and hold -> vSample
class MAliasing final : public ZelModel {
 public:
  explicit MAliasing(const std::string& name);
  void Derivatives(double t) override { solver_.Derivatives(t); }
  void DropClassMemory() override { nextSample = Bench().Time(); }

 private:
  friend class FusedSolver<MAliasing>;

  struct Loop;
  void Equations(Loop& s, double t);
  auto Parts(Loop& /*s*/) { return std::tie(generator_); }

  FusedSolver<MAliasing>& solver_ =
      SetSolver(std::make_unique<FusedSolver<MAliasing>>(Bench(), 1e-5, *this));

  Constant tSample_{Bench(), "TSample", "Sec", 0.001, 0.0001, 100};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};

  struct Loop : OnBench {
    using OnBench::OnBench;

    Variable vC{Bench(), "vC", "volts", Shown(1, 2)};
    Variable vSample{Bench(), "vSample", "volts", Shown(1, -2)};
  };
  Loop loop_{Bench()};

  // Sampled at 1000 Hz, 1030 Hz show up at 30 Hz.
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 0, .FreqHz = 1030, .Amplitude = 1.5}};
  ZelScope scope_{Bench(), "MainScope"};
};

MAliasing::MAliasing(const std::string& name) : ZelModel(name) {
  SetFiles("BWTX05-01.bmp", "BWTX05-01.txt");
  // The alias stands still when the sweep starts on it.
  scope_.Trigger().SetSource(*scope_.FindChannel(loop_.vSample.Name()));
  scope_.SetHorizontalScale(scope_.TimeChannel(), 0.01);
}

void MAliasing::Equations(Loop& s, double t) {
  s.vC.Value = generator_.Output();
  if (t > nextSample) {
    s.vSample.Value = s.vC.Value;
    nextSample += tSample_.Value();
  }
}

}  // namespace

std::unique_ptr<ZelModel> MakeAliasing(const std::string& name) {
  return std::make_unique<MAliasing>(name);
}

}  // namespace torvane
