#include "instruments/scope/scope.h"
#include "library/d_low_pass1.h"
#include "library/d_pi_plus.h"
#include "models/command_source.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/velocity_loop.h"

namespace torvane {

namespace {

// Class memory.
PreviousSample previousPF;
double outputInstant = 0.0;

/// Sampled PI velocity loop with a disturbance torque, and a feed-forward that decouples the loop
/// from the filtered disturbance.
///
///     vC -> PI -> + -> iC, late by TCalc -> current loop -> iF -> KT -> tE
///     tE + tD = tM -> 1/(J s) -> vM -> 1/s -> pM
///     pM -> encoder -> pF -> change per sample -> vF, fed back
///     tD -> low-pass -> -KDD/KT-Est -> +
class MDisturbance final : public ZelModel {
 public:
  explicit MDisturbance(const std::string& name);
  void Derivatives(double t) override { solver_.Derivatives(t); }
  void DropClassMemory() override {
    previousPF = {};
    outputInstant = 0.0;
  }

 private:
  friend class FusedSolver<MDisturbance>;

  enum BodeType { Command, Disturbance };

  struct Loop;
  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) {
    return std::tie(command_, disturbance_, s.vM, s.pM, s.currentLoop, s.clock, commandGenerator_,
                    disturbanceGenerator_);
  }
  void Sample(Loop& s, double t);

  FusedSolver<MDisturbance>& solver_ =
      SetSolver(std::make_unique<FusedSolver<MDisturbance>>(Bench(), 1e-5, *this));

  Constant kvp_{Bench(), "KVP", "", 0.72, 0, 1000};
  Constant kvi_{Bench(), "KVI", "", 100, 0, 10000};
  Constant kdd_{Bench(), "KDD", "", 0, 0, 2};
  Constant ddLpf_{Bench(), "DD LPF", "Hz", 20, 2, 2000};
  Constant ktEst_{Bench(), "KT-Est", "Nm/Amp", 1, 0.1, 10};
  Constant bodeType_{Bench(), "Bode type", {"Cmd", "Dist"}, Disturbance};
  DriveConstants drive_{Bench()};
  MotorConstants motor_{Bench()};
  Constant useRes_{Bench(), "Use Res?", {"No", "Yes"}};
  Constant res_{Bench(), "Res", "Lines/rev", 1000, 100, 1e10};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};

  struct Loop : OnBench {
    Loop(ZelBenchTop& bench, double period) : OnBench(bench), clock(bench, period) {}

    Variable vC{Bench(), "vC", "RPM", Hidden(10, RadToRpm)};
    StateVariable vM{Bench(), "vM", "RPM", 0, Shown(20, 0, RadToRpm)};
    Variable vE{Bench(), "vE", "RPM", Hidden(5, RadToRpm)};
    Variable vF{Bench(), "vF", "RPM", Hidden(5, RadToRpm)};
    StateVariable pM{Bench(), "pM", "Revs", 0, Hidden(0.01, RadToRevs)};
    Variable pF{Bench(), "pF", "Revs", Hidden(0.01, RadToRevs)};
    Variable iC{Bench(), "iC", "Amps", Hidden(2)};
    Variable iF{Bench(), "iF", "Amps", Shown(2)};
    Variable tE{Bench(), "tE", "Nm", Hidden(2)};
    Variable tD{Bench(), "tD", "Nm", Shown(2)};
    Variable tM{Bench(), "tM", "Nm", Hidden(2)};
    ZelLowPass2 currentLoop{Bench(), 600, Butterworth};
    ZelDController clock;
  };
  Loop loop_{Bench(), drive_.tSample.Default()};

  Analysers analysers_{Bench(), 13};
  ZelWave commandGenerator_{Bench(), "Command Source", {.Index = 8, .FreqHz = 10, .Amplitude = 10}};
  ZelWave disturbanceGenerator_{
      Bench(), "Disturbance Source", {.Index = 1, .FreqHz = 25, .Amplitude = 2}};
  CommandSource command_{Bench(), commandGenerator_, analysers_};
  CommandSource disturbance_{Bench(), disturbanceGenerator_, analysers_};
  ZelDPi& controller_ = loop_.clock.Add<ZelDPi>(&kvi_, &kvp_, CurrentLimit, WindUpFactor);
  ZelDLowPass1& decouplingFilter_ = loop_.clock.Add<ZelDLowPass1>(ddLpf_.Default(), 0.0);
  ZelScope scope_{Bench(), "MainScope"};
};

MDisturbance::MDisturbance(const std::string& name) : ZelModel(name) {
  SetFiles("BWTX07-01.bmp", "BWTX07-01.txt");
  analysers_.AddSetup("Disturbance Source", "tD", "vM");
  analysers_.AddSetup("Command Source", "vC", "vM");
  analysers_.AddVelocitySetups();
  analysers_.AddSetup("Open+180", "vE", "vF", 180.0);
}

void MDisturbance::Sample(Loop& s, double t) {
  s.pF.Value = EncoderPosition(s.pM.Value, useRes_, res_);
  s.vF.Value = previousPF.Difference(s.pF.Value) / drive_.tSample.Value();
  const double decoupling = -kdd_.Value() * decouplingFilter_.Step(s.tD.Value) / ktEst_.Value();
  s.iC.Value = controller_.Update(s.vC.Value, s.vF.Value, decoupling);
  outputInstant = drive_.OutputInstant(t);
  s.vE.Value = controller_.Error();
}

void MDisturbance::HandOnChanges() {
  drive_.HandOnChanges(loop_.clock, loop_.currentLoop);
  HandOn(ddLpf_, [&](double hz) { decouplingFilter_.SetFrequency(hz); });
}

void MDisturbance::Equations(Loop& s, double t) {
  const bool exciteDisturbance = bodeType_.Choice() == Disturbance;
  s.vC.Value = (exciteDisturbance ? commandGenerator_.Output() : command_.Value()) * RpmToRad;
  s.tD.Value = exciteDisturbance ? disturbance_.Value() : disturbanceGenerator_.Output();
  if (s.clock.SampleDue()) Sample(s, t);
  s.iF.Value = FollowCurrent(s.currentLoop, s.iC.Value, t, outputInstant);
  s.tE.Value = s.iF.Value * motor_.kt.Value();
  s.tM.Value = s.tE.Value + s.tD.Value;
  TurnInertia(s.tM.Value, motor_.j.Value(), s.vM, s.pM);
}

}  // namespace

std::unique_ptr<ZelModel> MakeDisturbance(const std::string& name) {
  return std::make_unique<MDisturbance>(name);
}

}  // namespace torvane
