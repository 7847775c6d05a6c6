#include "instruments/scope/scope.h"
#include "kit/command_source.h"
#include "kit/fused_model.h"
#include "kit/velocity_loop.h"
#include "models/factories.h"

namespace torvane {

namespace {

/// Continuous PI velocity loop around a current loop and an inertia.
///
///     vC - vF = vE -> KVP (1 + KVI/s) -> limit -> iC -> current loop -> iF -> KT -> tM
///     tM -> 1/(J s) -> vM = vF -> 1/s -> pM
class MSeminarPI final : public FusedModel<MSeminarPI> {
 public:
  explicit MSeminarPI(const std::string& name);

  struct Loop {
    double vC = 0, vE = 0, vF = 0, iC = 0, iF = 0, tM = 0;
    State vM, vEInt, pM;
    LowPass2 currentLoop{600, Butterworth};
  };
  Loop loop_;

  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) { return std::tie(command_, s.vM, s.vEInt, s.pM, s.currentLoop, generator_); }

 private:
  Constant kvp_{Bench(), "KVP", "", Adjustable(0.72, 0, 1000),
                "Proportional gain of the velocity loop (Amps per rad/s)"};
  Constant kvi_{Bench(), "KVI", "", Adjustable(100, 0, 10000),
                "Integral gain of the velocity loop: below it the integral takes over (rad/s)"};
  Constant cLoop_{Bench(), "CLoop", "Hz", Adjustable(800, 100, 2000),
                  "Bandwidth of the current loop"};
  Constant kt_{Bench(), "KT", "n-m/Amp", Adjustable(1, 0.1, 10), "Torque constant of the motor"};
  Constant j_{Bench(), "J", "kg-m^2", Adjustable(0.002, 1e-6, 1), "Inertia of motor and load"};

  Signals signals_{
      Bench(),
      {{loop_.vC, "vC", "RPM", Shown(10, 0, RadToRpm), "Command velocity"},
       {loop_.vM, "vM", "RPM", Shown(10, 0, RadToRpm), "Motor velocity"},
       {loop_.vE, "vE", "RPM", Hidden(10, RadToRpm),
        "Velocity error: what the controller works on"},
       {loop_.vEInt, "vEInt", "Revs", Hidden(0.001, RadToRevs), "Integral of the velocity error"},
       {loop_.vF, "vF", "RPM", Hidden(10, RadToRpm),
        "Feedback velocity: what the controller is told"},
       {loop_.pM, "pM", "Revs", Hidden(0.01, RadToRevs), "Motor position"},
       {loop_.iC, "iC", "Amps", Hidden(5), "Current command: what the controller asks for"},
       {loop_.iF, "iF", "Amps", Hidden(5), "Current feedback: the current that flows"},
       {loop_.tM, "tM", "Nm", Hidden(5), "Torque that turns the motor"}}};
  OnBench<LowPass2> currentLoop_{Bench(), loop_.currentLoop};

  Analysers analysers_{Bench(), 13};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 25, .Amplitude = 20}};
  CommandSource command_{Bench(), generator_, analysers_};
  ZelScope scope_{Bench(), "MainScope"};
};

MSeminarPI::MSeminarPI(const std::string& name) : FusedModel(name, 1e-5) {
  SetFiles("SeminarAnalogVelocityPI.bmp", "SeminarAnalogVelocityPI.txt");
  analysers_.AddVelocitySetups();
}

void MSeminarPI::HandOnChanges() {
  HandOn(cLoop_, [&](double hz) { loop_.currentLoop.SetFrequency(hz); });
}

void MSeminarPI::Equations(Loop& s, double /*t*/) {
  s.vC = command_.Value() * RpmToRad;
  s.vF = s.vM;
  s.vE = s.vC - s.vF;
  s.vEInt.Derivative = s.vE;
  const double unlimited = (kvi_.Value() * s.vEInt + s.vE) * kvp_.Value();
  s.iC = LimitWithAntiWindUp(unlimited, s.vE, s.vEInt, kvp_.Value(), kvi_.Value(), CurrentLimit,
                             CurrentLimit * WindUpFactor);
  s.currentLoop.SetInput(s.iC);
  s.iF = s.currentLoop.Output();
  s.tM = s.iF * kt_.Value();
  TurnInertia(s.tM, j_.Value(), s.vM, s.pM);
}

}  // namespace

std::unique_ptr<ZelModel> MakeSeminarPI(const std::string& name) {
  return std::make_unique<MSeminarPI>(name);
}

}  // namespace torvane
