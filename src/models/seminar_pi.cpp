#include "instruments/scope/scope.h"
#include "models/command_source.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/velocity_loop.h"

namespace torvane {

namespace {

/// Continuous PI velocity loop around a current loop and an inertia.
///
///     vC - vF = vE -> KVP (1 + KVI/s) -> limit -> iC -> current loop -> iF -> KT -> tM
///     tM -> 1/(J s) -> vM = vF -> 1/s -> pM
class MSeminarPI final : public ZelModel {
 public:
  explicit MSeminarPI(const std::string& name);
  void Derivatives(double t) override { solver_.Derivatives(t); }

 private:
  friend class FusedSolver<MSeminarPI>;

  struct Loop;
  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) { return std::tie(command_, s.vM, s.vEInt, s.pM, s.currentLoop, generator_); }

  FusedSolver<MSeminarPI>& solver_ =
      SetSolver(std::make_unique<FusedSolver<MSeminarPI>>(Bench(), 1e-5, *this));

  Constant kvp_{Bench(), "KVP", "", 0.72, 0, 1000};
  Constant kvi_{Bench(), "KVI", "", 100, 0, 10000};
  Constant cLoop_{Bench(), "CLoop", "Hz", 800, 100, 2000};
  Constant kt_{Bench(), "KT", "n-m/Amp", 1, 0.1, 10};
  Constant j_{Bench(), "J", "kg-m^2", 0.002, 1e-6, 1};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};

  struct Loop : OnBench {
    using OnBench::OnBench;

    Variable vC{Bench(), "vC", "RPM", Shown(10, 0, RadToRpm)};
    StateVariable vM{Bench(), "vM", "RPM", 0, Shown(10, 0, RadToRpm)};
    Variable vE{Bench(), "vE", "RPM", Hidden(10, RadToRpm)};
    StateVariable vEInt{Bench(), "vEInt", "Revs", 0, Hidden(0.001, RadToRevs)};
    Variable vF{Bench(), "vF", "RPM", Hidden(10, RadToRpm)};
    StateVariable pM{Bench(), "pM", "Revs", 0, Hidden(0.01, RadToRevs)};
    Variable iC{Bench(), "iC", "Amps", Hidden(5)};
    Variable iF{Bench(), "iF", "Amps", Hidden(5)};
    Variable tM{Bench(), "tM", "Nm", Hidden(5)};
    ZelLowPass2 currentLoop{Bench(), 600, Butterworth};
  };
  Loop loop_{Bench()};

  Analysers analysers_{Bench(), 13};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 25, .Amplitude = 20}};
  CommandSource command_{Bench(), generator_, analysers_};
  ZelScope scope_{Bench(), "MainScope"};
};

MSeminarPI::MSeminarPI(const std::string& name) : ZelModel(name) {
  SetFiles("SeminarAnalogVelocityPI.bmp", "");
  analysers_.AddVelocitySetups();
}

void MSeminarPI::HandOnChanges() {
  HandOn(cLoop_, [&](double hz) { loop_.currentLoop.SetFrequency(hz); });
}

void MSeminarPI::Equations(Loop& s, double /*t*/) {
  s.vC.Value = command_.Value() * RpmToRad;
  s.vF.Value = s.vM.Value;
  s.vE.Value = s.vC.Value - s.vF.Value;
  s.vEInt.Derivative = s.vE.Value;
  const double unlimited = (kvi_.Value() * s.vEInt.Value + s.vE.Value) * kvp_.Value();
  s.iC.Value = LimitWithAntiWindUp(unlimited, s.vE.Value, s.vEInt, kvp_.Value(), kvi_.Value(),
                                   CurrentLimit, CurrentLimit * WindUpFactor);
  s.currentLoop.SetInput(s.iC.Value);
  s.iF.Value = s.currentLoop.Output();
  s.tM.Value = s.iF.Value * kt_.Value();
  TurnInertia(s.tM.Value, j_.Value(), s.vM, s.pM);
}

}  // namespace

std::unique_ptr<ZelModel> MakeSeminarPI(const std::string& name) {
  return std::make_unique<MSeminarPI>(name);
}

}  // namespace torvane
