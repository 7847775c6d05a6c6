#include "instruments/scope/scope.h"
#include "library/d_low_pass2.h"
#include "library/d_notch.h"
#include "library/d_pi_plus.h"
#include "library/two_inertia_mechanism.h"
#include "models/command_source.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/velocity_loop.h"

namespace torvane {

namespace {

// Class memory.
PreviousSample previousPM;
PreviousSample previousPL;
double outputInstant = 0.0;

/// Sampled PI+ velocity loop around two inertias on a compliant shaft, fed back with a mix of motor
/// and load velocity. The coefficients of its sampled filters follow their own constants only.
///
///     vC -> PI+ -> - KCVA (vMF - vLF) -> LPF -> notch -> iC, late by TCalc -> current loop -> iF
///     iF -> KT -> mechanism -> vM, pM and vL, pL
///     pM, pL -> change per sample -> vMF, vLF -> VMix vMF + (1 - VMix) vLF = vF, fed back
class MResonance final : public ZelModel {
 public:
  explicit MResonance(const std::string& name);
  void Derivatives(double t) override { solver_.Derivatives(t); }
  void DropClassMemory() override {
    previousPM = {};
    previousPL = {};
    outputInstant = 0.0;
  }

 private:
  friend class FusedSolver<MResonance>;

  struct Loop;
  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) {
    return std::tie(command_, s.mechanism, s.currentLoop, s.clock, generator_);
  }
  void Sample(Loop& s, double t);

  FusedSolver<MResonance>& solver_ =
      SetSolver(std::make_unique<FusedSolver<MResonance>>(Bench(), 5e-5, *this));

  Constant kvp_{Bench(), "KVP", "", 0.72, 0, 1000};
  Constant kvi_{Bench(), "KVI", "", 0, 0, 10000};
  Constant kvfr_{Bench(), "KVFR", "", 100, 0, 100};
  Constant ks_{Bench(), "KS", "Nm/rad", 2000, 0, 1e8};
  Constant kcv_{Bench(), "KCV", "Nm-s/rad", 0.5, 0, 100};
  DriveConstants drive_{Bench()};
  Constant kt_{Bench(), "KT", "Nm/Amp", 1, 0.1, 10};
  Constant jm_{Bench(), "JM", "kg-m^2", 0.0002, 0.0001, 1};
  Constant jl_{Bench(), "JL", "kg-m^2", 0.0018, 0.0001, 10};
  Constant lpf_{Bench(), "LPF", "Hz", 800, 10, 5000};
  Constant useNotch_{Bench(), "Use Notch?", {"No", "Yes"}};
  Constant notch_{Bench(), "Notch", "Hz", 800, 10, 5000};
  Constant vMix_{Bench(), "VMix", "", 1, 0, 2};
  Constant kcva_{Bench(), "KCVA", "", 0, -5, 5};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};

  struct Loop : OnBench {
    Loop(ZelBenchTop& bench, const MechanismSettings& settings, double period)
        : OnBench(bench), mechanism(bench, settings), clock(bench, period) {}

    Variable vC{Bench(), "vC", "RPM", Shown(10, 0, RadToRpm)};
    Variable vM{Bench(), "vM", "RPM", Hidden(10, RadToRpm)};
    Variable vE{Bench(), "vE", "RPM", Hidden(10, RadToRpm)};
    Variable vMF{Bench(), "vMF", "RPM", Hidden(10, RadToRpm)};
    Variable vF{Bench(), "vF", "RPM", Shown(10, 0, RadToRpm)};
    Variable pM{Bench(), "pM", "Deg", Hidden(2, RadToDeg)};
    Variable vL{Bench(), "vL", "RPM", Shown(10, 0, RadToRpm)};
    Variable vLF{Bench(), "vLF", "RPM", Hidden(10, RadToRpm)};
    Variable pL{Bench(), "pL", "Deg", Hidden(2, RadToDeg)};
    Variable iC{Bench(), "iC", "Amps", Hidden(5)};
    Variable iF{Bench(), "iF", "Amps", Hidden(5)};
    Zel2JMech mechanism;
    ZelLowPass2 currentLoop{Bench(), 600, Butterworth};
    ZelDController clock;
  };
  Loop loop_{Bench(),
             {.JM = jm_.Default(), .JL = jl_.Default(), .KS = ks_.Default(), .KCV = kcv_.Default()},
             drive_.tSample.Default()};

  Analysers analysers_{Bench(), 13, {.TSample = 5e-5}};
  ZelWave generator_{Bench(), "Command Source", {.Index = 1, .FreqHz = 25, .Amplitude = 20}};
  CommandSource command_{Bench(), generator_, analysers_};
  ZelDPiPlus& controller_ =
      loop_.clock.Add<ZelDPiPlus>(&kvi_, &kvp_, &kvfr_, CurrentLimit, WindUpFactor);
  ZelDLowPass2& filter_ = loop_.clock.Add<ZelDLowPass2>(100.0, Butterworth, 0.0);
  ZelDNotch& notchFilter_ = loop_.clock.Add<ZelDNotch>(100.0, 0.4, 0.0);
  ZelScope scope_{Bench(), "MainScope"};
};

MResonance::MResonance(const std::string& name) : ZelModel(name) {
  SetFiles("BWTX15-01.bmp", "BWTX15-01.txt");
  analysers_.AddVelocitySetups();
}

void MResonance::Sample(Loop& s, double t) {
  // Both velocities are always estimated from position.
  s.vMF.Value = previousPM.Difference(s.pM.Value) / drive_.tSample.Value();
  s.vLF.Value = previousPL.Difference(s.pL.Value) / drive_.tSample.Value();
  s.vF.Value = vMix_.Value() * s.vMF.Value + (1.0 - vMix_.Value()) * s.vLF.Value;
  s.iC.Value = controller_.Update(s.vC.Value, s.vF.Value, 0.0);
  s.vE.Value = controller_.Error();
  s.iC.Value -= (s.vMF.Value - s.vLF.Value) * kcva_.Value();
  s.iC.Value = filter_.Step(s.iC.Value);
  if (useNotch_.Choice() == Yes) s.iC.Value = notchFilter_.Step(s.iC.Value);
  outputInstant = drive_.OutputInstant(t);
}

void MResonance::HandOnChanges() {
  HandOn(ks_, [&](double stiffness) { loop_.mechanism.SetKS(stiffness); });
  HandOn(kcv_, [&](double damping) { loop_.mechanism.SetKCV(damping); });
  HandOn(jm_, [&](double inertia) { loop_.mechanism.SetJM(inertia); });
  HandOn(jl_, [&](double inertia) { loop_.mechanism.SetJL(inertia); });
  HandOn(lpf_, [&](double hz) { filter_.SetFrequency(hz); });
  HandOn(notch_, [&](double hz) { notchFilter_.SetFrequency(hz); });
  drive_.HandOnChanges(loop_.clock, loop_.currentLoop);
}

void MResonance::Equations(Loop& s, double t) {
  s.vC.Value = command_.Value() * RpmToRad;
  if (s.clock.SampleDue()) Sample(s, t);
  s.iF.Value = FollowCurrent(s.currentLoop, s.iC.Value, t, outputInstant);
  s.mechanism.SetMotorTorque(kt_.Value() * s.iF.Value);
  s.vM.Value = s.mechanism.Motor().Velocity;
  s.pM.Value = s.mechanism.Motor().Position;
  s.vL.Value = s.mechanism.Load().Velocity;
  s.pL.Value = s.mechanism.Load().Position;
}

}  // namespace

std::unique_ptr<ZelModel> MakeResonance(const std::string& name) {
  return std::make_unique<MResonance>(name);
}

}  // namespace torvane
