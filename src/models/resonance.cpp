#include "instruments/scope/scope.h"
#include "library/d_low_pass2.h"
#include "library/d_notch.h"
#include "library/d_pi_plus.h"
#include "library/two_inertia_mechanism.h"
#include "models/command_source.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/velocity_signals.h"

namespace torvane {

namespace {

// Kept once for the class on purpose: a new model or a reset goes on from what was seen last.
PreviousSample previousPM;
PreviousSample previousPL;
double outputInstant = 0.0;

/// Sampled PI+ velocity loop around two inertias on a compliant shaft, fed back with a mix of motor
/// and load velocity. The coefficients of its sampled filters follow their own constants only.
class MResonance final : public ZelModel {
 public:
  explicit MResonance(const std::string& name);
  void Derivatives(double t) override;
  void DropClassMemory() override {
    previousPM = {};
    previousPL = {};
    outputInstant = 0.0;
  }

  auto States() { return std::tuple_cat(mechanism_.States(), currentLoop_.States()); }
  auto Blocks() { return std::tie(mechanism_, currentLoop_, generator_, clock_); }

 private:
  void HandOnChanges();
  void Sample(double t);

  ZelSolver& solver_ = SetSolver(std::make_unique<FusedSolver<MResonance>>(Bench(), 5e-5, *this));

  Constant kvp_{Bench(), "KVP", "", 0.72, 0, 1000};
  Constant kvi_{Bench(), "KVI", "", 0, 0, 10000};
  Constant kvfr_{Bench(), "KVFR", "", 100, 0, 100};
  Constant ks_{Bench(), "KS", "Nm/rad", 2000, 0, 1e8};
  Constant kcv_{Bench(), "KCV", "Nm-s/rad", 0.5, 0, 100};
  Constant cLoop_{Bench(), "CLoop", "Hz", 800, 100, 10000};
  Constant tSample_{Bench(), "TSample", "Sec", 0.00025, 0.0001, 100};
  Constant tCalc_{Bench(), "TCalc", "%", 65, 0, 95};
  Constant kt_{Bench(), "KT", "Nm/Amp", 1, 0.1, 10};
  Constant jm_{Bench(), "JM", "kg-m^2", 0.0002, 0.0001, 1};
  Constant jl_{Bench(), "JL", "kg-m^2", 0.0018, 0.0001, 10};
  Constant lpf_{Bench(), "LPF", "Hz", 800, 10, 5000};
  Constant useNotch_{Bench(), "Use Notch?", {"No", "Yes"}};
  Constant notch_{Bench(), "Notch", "Hz", 800, 10, 5000};
  Constant vMix_{Bench(), "VMix", "", 1, 0, 2};
  Constant kcva_{Bench(), "KCVA", "", 0, -5, 5};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};
  Variable vC_{Bench(), "vC", "RPM", Shown(10, 0, RadToRpm)};
  Variable vM_{Bench(), "vM", "RPM", Hidden(10, RadToRpm)};
  Variable vE_{Bench(), "vE", "RPM", Hidden(10, RadToRpm)};
  Variable vMF_{Bench(), "vMF", "RPM", Hidden(10, RadToRpm)};
  Variable vF_{Bench(), "vF", "RPM", Shown(10, 0, RadToRpm)};
  Variable pM_{Bench(), "pM", "Deg", Hidden(2, RadToDeg)};
  Variable vL_{Bench(), "vL", "RPM", Shown(10, 0, RadToRpm)};
  Variable vLF_{Bench(), "vLF", "RPM", Hidden(10, RadToRpm)};
  Variable pL_{Bench(), "pL", "Deg", Hidden(2, RadToDeg)};
  Variable iC_{Bench(), "iC", "Amps", Hidden(5)};
  Variable iF_{Bench(), "iF", "Amps", Hidden(5)};

  Zel2JMech mechanism_{
      Bench(),
      {.JM = jm_.Default(), .JL = jl_.Default(), .KS = ks_.Default(), .KCV = kcv_.Default()}};
  ZelLowPass2 currentLoop_{Bench(), 600, Butterworth};
  Analysers analysers_{Bench(), 13, {.TSample = 5e-5}};
  ZelWave generator_{Bench(), "Command Source", {.Index = 1, .FreqHz = 25, .Amplitude = 20}};
  CommandSource command_{Bench(), generator_, analysers_};
  ZelDController clock_{Bench(), tSample_.Default()};
  ZelDPiPlus& controller_ =
      clock_.Add<ZelDPiPlus>(&kvi_, &kvp_, &kvfr_, CurrentLimit, WindUpFactor);
  ZelDLowPass2& filter_ = clock_.Add<ZelDLowPass2>(100.0, Butterworth, 0.0);
  ZelDNotch& notchFilter_ = clock_.Add<ZelDNotch>(100.0, 0.4, 0.0);
  ZelScope scope_{Bench(), "MainScope"};
};

MResonance::MResonance(const std::string& name) : ZelModel(name) {
  SetFiles("BWTX15-01.bmp", "BWTX15-01.txt");
  analysers_.AddVelocitySetups();
}

void MResonance::HandOnChanges() {
  HandOn(ks_, [&](double stiffness) { mechanism_.SetKS(stiffness); });
  HandOn(kcv_, [&](double damping) { mechanism_.SetKCV(damping); });
  HandOn(jm_, [&](double inertia) { mechanism_.SetJM(inertia); });
  HandOn(jl_, [&](double inertia) { mechanism_.SetJL(inertia); });
  HandOn(lpf_, [&](double hz) { filter_.SetFrequency(hz); });
  HandOn(notch_, [&](double hz) { notchFilter_.SetFrequency(hz); });
  HandOn(tSample_, [&](double period) { clock_.SetPeriod(period); });
  HandOn(cLoop_, [&](double hz) { currentLoop_.SetFrequency(hz); });
}

void MResonance::Sample(double t) {
  // Both velocities are always estimated from position.
  vMF_.Value = previousPM.Difference(pM_.Value) / tSample_.Value();
  vLF_.Value = previousPL.Difference(pL_.Value) / tSample_.Value();
  vF_.Value = vMix_.Value() * vMF_.Value + (1.0 - vMix_.Value()) * vLF_.Value;
  iC_.Value = controller_.Update(vC_.Value, vF_.Value, 0.0);
  vE_.Value = controller_.Error();
  iC_.Value -= (vMF_.Value - vLF_.Value) * kcva_.Value();
  iC_.Value = filter_.Step(iC_.Value);
  if (useNotch_.Choice() == Yes) iC_.Value = notchFilter_.Step(iC_.Value);
  outputInstant = OutputInstant(t, tCalc_, tSample_);
}

void MResonance::Derivatives(double t) {
  HandOnChanges();
  vC_.Value = command_.Value() * RpmToRad;
  if (clock_.SampleDue()) Sample(t);
  if (t >= outputInstant) currentLoop_.SetInput(iC_.Value);
  iF_.Value = currentLoop_.Output();
  mechanism_.SetMotorTorque(kt_.Value() * iF_.Value);
  vM_.Value = mechanism_.Motor().Velocity;
  pM_.Value = mechanism_.Motor().Position;
  vL_.Value = mechanism_.Load().Velocity;
  pL_.Value = mechanism_.Load().Position;
}

}  // namespace

std::unique_ptr<ZelModel> MakeResonance(const std::string& name) {
  return std::make_unique<MResonance>(name);
}

}  // namespace torvane
