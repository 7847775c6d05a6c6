#include "instruments/scope/scope.h"
#include "models/command_source.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/velocity_signals.h"

namespace torvane {

namespace {

/// Continuous PI velocity loop around a current loop and an inertia.
class MSeminarPI final : public ZelModel {
 public:
  explicit MSeminarPI(const std::string& name);
  void Derivatives(double t) override;

  auto States() { return std::tuple_cat(std::tie(vM_, vEInt_, pM_), currentLoop_.States()); }
  auto Blocks() { return std::tie(currentLoop_, generator_); }

 private:
  ZelSolver& solver_ = SetSolver(std::make_unique<FusedSolver<MSeminarPI>>(Bench(), 1e-5, *this));

  Constant kvp_{Bench(), "KVP", "", 0.72, 0, 1000};
  Constant kvi_{Bench(), "KVI", "", 100, 0, 10000};
  Constant cLoop_{Bench(), "CLoop", "Hz", 800, 100, 2000};
  Constant kt_{Bench(), "KT", "n-m/Amp", 1, 0.1, 10};
  Constant j_{Bench(), "J", "kg-m^2", 0.002, 1e-6, 1};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};
  Variable vC_{Bench(), "vC", "RPM", Shown(10, 0, RadToRpm)};
  StateVariable vM_{Bench(), "vM", "RPM", 0, Shown(10, 0, RadToRpm)};
  Variable vE_{Bench(), "vE", "RPM", Hidden(10, RadToRpm)};
  StateVariable vEInt_{Bench(), "vEInt", "Revs", 0, Hidden(0.001, RadToRevs)};
  Variable vF_{Bench(), "vF", "RPM", Hidden(10, RadToRpm)};
  StateVariable pM_{Bench(), "pM", "Revs", 0, Hidden(0.01, RadToRevs)};
  Variable iC_{Bench(), "iC", "Amps", Hidden(5)};
  Variable iF_{Bench(), "iF", "Amps", Hidden(5)};
  Variable tM_{Bench(), "tM", "Nm", Hidden(5)};

  ZelLowPass2 currentLoop_{Bench(), 600, Butterworth};
  Analysers analysers_{Bench(), 13};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 25, .Amplitude = 20}};
  CommandSource command_{Bench(), generator_, analysers_};
  ZelScope scope_{Bench(), "MainScope"};
};

MSeminarPI::MSeminarPI(const std::string& name) : ZelModel(name) {
  SetFiles("SeminarAnalogVelocityPI.bmp", "");
  analysers_.AddVelocitySetups();
}

void MSeminarPI::Derivatives(double /*t*/) {
  HandOn(cLoop_, [&](double hz) { currentLoop_.SetFrequency(hz); });
  vC_.Value = command_.Value() * RpmToRad;
  vF_.Value = vM_.Value;
  vE_.Value = vC_.Value - vF_.Value;
  vEInt_.Derivative = vE_.Value;
  const double unlimited = (kvi_.Value() * vEInt_.Value + vE_.Value) * kvp_.Value();
  iC_.Value = LimitWithAntiWindUp(unlimited, vE_.Value, vEInt_, kvp_.Value(), kvi_.Value(),
                                  CurrentLimit, CurrentLimit * WindUpFactor);
  currentLoop_.SetInput(iC_.Value);
  iF_.Value = currentLoop_.Output();
  tM_.Value = iF_.Value * kt_.Value();
  TurnInertia(tM_.Value, j_.Value(), vM_, pM_);
}

}  // namespace

std::unique_ptr<ZelModel> MakeSeminarPI(const std::string& name) {
  return std::make_unique<MSeminarPI>(name);
}

}  // namespace torvane
