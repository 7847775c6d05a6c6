#include "instruments/scope/scope.h"
#include "kit/command_source.h"
#include "kit/fused_model.h"
#include "kit/velocity_loop.h"
#include "library/d_low_pass2.h"
#include "library/d_notch.h"
#include "library/d_pi_plus.h"
#include "library/two_inertia_mechanism.h"
#include "models/factories.h"

namespace torvane {

namespace {

struct MResonanceMemory {
  PreviousSample PreviousPM;
  PreviousSample PreviousPL;
  double OutputInstant = 0.0;

  void Carry(Carried& carried) {
    PreviousPM.Carry(carried);
    PreviousPL.Carry(carried);
    carried.Keep(OutputInstant);
  }
};

/// Sampled PI+ velocity loop around two inertias on a compliant shaft, fed back with a mix of motor
/// and load velocity. The coefficients of its sampled filters follow their own constants only.
///
///     vC -> PI+ -> - KCVA (vMF - vLF) -> LPF -> notch -> iC, late by TCalc -> current loop -> iF
///     iF -> KT -> mechanism -> vM, pM and vL, pL
///     pM, pL -> change per sample -> vMF, vLF -> VMix vMF + (1 - VMix) vLF = vF, fed back
class MResonance final : public FusedModel<MResonance, MResonanceMemory> {
 public:
  explicit MResonance(const std::string& name);

  struct Loop {
    double vC = 0, vM = 0, vE = 0, vMF = 0, vF = 0, pM = 0, vL = 0, vLF = 0, pL = 0, iC = 0, iF = 0;
    TwoInertiaMechanism mechanism{{.JM = 0.0002, .JL = 0.0018, .KS = 2000, .KCV = 0.5}};
    LowPass2 currentLoop{600, Butterworth};
    ControllerClock clock;
  };
  Loop loop_;

  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) {
    return std::tie(command_, s.mechanism, s.currentLoop, s.clock, generator_);
  }

 private:
  void Sample(Loop& s, double t);

  Constant kvp_{Bench(), "KVP", "", Adjustable(0.72, 0, 1000),
                "Proportional gain of the velocity loop (Amps per rad/s)"};
  Constant kvi_{Bench(), "KVI", "", Adjustable(0, 0, 10000),
                "Integral gain of the velocity loop: below it the integral takes over (rad/s)"};
  Constant kvfr_{Bench(), "KVFR", "", Adjustable(100, 0, 100),
                 "Share of the command that bypasses the command filter: 100 is plain PI (%)"};
  Constant ks_{Bench(), "KS", "Nm/rad", Adjustable(2000, 0, 1e8),
               "Stiffness of the shaft between motor and load"};
  Constant kcv_{Bench(), "KCV", "Nm-s/rad", Adjustable(0.5, 0, 100),
                "Damping of the shaft between motor and load"};
  DriveConstants drive_{Bench()};
  Constant kt_{Bench(), "KT", "Nm/Amp", Adjustable(1, 0.1, 10), "Torque constant of the motor"};
  Constant jm_{Bench(), "JM", "kg-m^2", Adjustable(0.0002, 0.0001, 1), "Inertia of the motor"};
  Constant jl_{Bench(), "JL", "kg-m^2", Adjustable(0.0018, 0.0001, 10), "Inertia of the load"};
  Constant lpf_{Bench(), "LPF", "Hz", Adjustable(800, 10, 5000),
                "Bandwidth of the two-pole low-pass in the current command"};
  Constant useNotch_{
      Bench(), "Use Notch?", {"No", "Yes"}, No, "Yes: the notch acts on the current command"};
  Constant notch_{Bench(), "Notch", "Hz", Adjustable(800, 10, 5000),
                  "Frequency of the notch in the current command"};
  Constant vMix_{Bench(), "VMix", "", Adjustable(1, 0, 2),
                 "Velocity that is fed back: 1 is the motor's, 0 the load's, between them a mix"};
  Constant kcva_{Bench(), "KCVA", "", Adjustable(0, -5, 5),
                 "Active damping by the difference of motor and load velocity (Amps per rad/s)"};

  Signals signals_{
      Bench(),
      {{loop_.vC, "vC", "RPM", Shown(10, 0, RadToRpm), "Command velocity"},
       {loop_.vM, "vM", "RPM", Hidden(10, RadToRpm), "Motor velocity"},
       {loop_.vE, "vE", "RPM", Hidden(10, RadToRpm),
        "Velocity error: what the controller works on"},
       {loop_.vMF, "vMF", "RPM", Hidden(10, RadToRpm),
        "Motor velocity as estimated from its position"},
       {loop_.vF, "vF", "RPM", Shown(10, 0, RadToRpm),
        "Feedback velocity: what the controller is told"},
       {loop_.pM, "pM", "Deg", Hidden(2, RadToDeg), "Motor position"},
       {loop_.vL, "vL", "RPM", Shown(10, 0, RadToRpm), "Load velocity"},
       {loop_.vLF, "vLF", "RPM", Hidden(10, RadToRpm),
        "Load velocity as estimated from its position"},
       {loop_.pL, "pL", "Deg", Hidden(2, RadToDeg), "Load position"},
       {loop_.iC, "iC", "Amps", Hidden(5), "Current command: what the controller asks for"},
       {loop_.iF, "iF", "Amps", Hidden(5), "Current feedback: the current that flows"}}};
  OnBench<TwoInertiaMechanism> mechanism_{Bench(), loop_.mechanism};
  OnBench<LowPass2> currentLoop_{Bench(), loop_.currentLoop};
  ZelDController clock_{Bench(), drive_.tSample.Default(), &loop_.clock};

  Analysers analysers_{Bench(), 13, {.TSample = 5e-5}};
  ZelWave generator_{Bench(), "Command Source", {.Index = 1, .FreqHz = 25, .Amplitude = 20}};
  CommandSource command_{Bench(), generator_, analysers_};
  ZelDPiPlus& controller_ =
      clock_.Add<ZelDPiPlus>(&kvi_, &kvp_, &kvfr_, CurrentLimit, WindUpFactor);
  ZelDLowPass2& filter_ = clock_.Add<ZelDLowPass2>(100.0, Butterworth, 0.0);
  ZelDNotch& notchFilter_ = clock_.Add<ZelDNotch>(100.0, 0.4, 0.0);
  ZelScope scope_{Bench(), "MainScope"};
};

MResonance::MResonance(const std::string& name) : FusedModel(name, 5e-5) {
  SetFiles("BWTX15-01.bmp", "BWTX15-01.txt");
  analysers_.AddVelocitySetups(&loop_.clock, &drive_.tSample);
}

void MResonance::Sample(Loop& s, double t) {
  // Both velocities are always estimated from position.
  s.vMF = memory_.PreviousPM.Difference(s.pM) / drive_.tSample.Value();
  s.vLF = memory_.PreviousPL.Difference(s.pL) / drive_.tSample.Value();
  s.vF = vMix_.Value() * s.vMF + (1.0 - vMix_.Value()) * s.vLF;
  s.iC = controller_.Update(s.vC, s.vF, 0.0);
  s.vE = controller_.Error();
  s.iC -= (s.vMF - s.vLF) * kcva_.Value();
  s.iC = filter_.Step(s.iC);
  if (useNotch_.Choice() == Yes) s.iC = notchFilter_.Step(s.iC);
  memory_.OutputInstant = drive_.OutputInstant(t);
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
  s.vC = command_.Value() * RpmToRad;
  if (s.clock.SampleDue()) Sample(s, t);
  s.iF = FollowCurrent(s.currentLoop, s.iC, t, memory_.OutputInstant);
  s.mechanism.SetMotorTorque(kt_.Value() * s.iF);
  s.vM = s.mechanism.Motor().Velocity;
  s.pM = s.mechanism.Motor().Position;
  s.vL = s.mechanism.Load().Velocity;
  s.pL = s.mechanism.Load().Position;
}

}  // namespace

std::unique_ptr<ZelModel> MakeResonance(const std::string& name) {
  return std::make_unique<MResonance>(name);
}

}  // namespace torvane
