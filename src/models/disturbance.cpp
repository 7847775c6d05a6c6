#include "instruments/scope/scope.h"
#include "kit/command_source.h"
#include "kit/fused_model.h"
#include "kit/velocity_loop.h"
#include "library/d_low_pass1.h"
#include "library/d_pi_plus.h"
#include "models/factories.h"

namespace torvane {

namespace {

struct MDisturbanceMemory {
  PreviousSample PreviousPF;
  double OutputInstant = 0.0;

  void Carry(Carried& carried) {
    PreviousPF.Carry(carried);
    carried.Keep(OutputInstant);
  }
};

/// Sampled PI velocity loop with a disturbance torque, and a feed-forward that decouples the loop
/// from the filtered disturbance.
///
///     vC -> PI -> + -> iC, late by TCalc -> current loop -> iF -> KT -> tE
///     tE + tD = tM -> 1/(J s) -> vM -> 1/s -> pM
///     pM -> encoder -> pF -> change per sample -> vF, fed back
///     tD -> low-pass -> -KDD/KT-Est -> +
class MDisturbance final : public FusedModel<MDisturbance, MDisturbanceMemory> {
 public:
  explicit MDisturbance(const std::string& name);

  enum BodeType { Command, Disturbance };

  struct Loop {
    double vC = 0, vE = 0, vF = 0, pF = 0, iC = 0, iF = 0, tE = 0, tD = 0, tM = 0;
    State vM, pM;
    LowPass2 currentLoop{600, Butterworth};
    ControllerClock clock;
  };
  Loop loop_;

  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) {
    return std::tie(command_, disturbance_, s.vM, s.pM, s.currentLoop, s.clock, commandGenerator_,
                    disturbanceGenerator_);
  }

 private:
  void Sample(Loop& s, double t);

  Constant kvp_{Bench(), "KVP", "", Adjustable(0.72, 0, 1000),
                "Proportional gain of the velocity loop (Amps per rad/s)"};
  Constant kvi_{Bench(), "KVI", "", Adjustable(100, 0, 10000),
                "Integral gain of the velocity loop: below it the integral takes over (rad/s)"};
  Constant kdd_{Bench(), "KDD", "", Adjustable(0, 0, 2),
                "Disturbance decoupling: share of the measured disturbance that is countered"};
  Constant ddLpf_{Bench(), "DD LPF", "Hz", Adjustable(20, 2, 2000),
                  "Bandwidth with which the disturbance is measured"};
  Constant ktEst_{Bench(), "KT-Est", "Nm/Amp", Adjustable(1, 0.1, 10),
                  "Estimate of KT that the feed-forward or decoupling works with"};
  Constant bodeType_{Bench(),
                     "Bode type",
                     {"Cmd", "Dist"},
                     Disturbance,
                     "What the analysers excite: the command or the disturbance"};
  DriveConstants drive_{Bench()};
  MotorConstants motor_{Bench()};
  Constant useRes_{Bench(),
                   "Use Res?",
                   {"No", "Yes"},
                   No,
                   "Yes: the encoder's position is cut down to whole counts"};
  Constant res_{Bench(), "Res", "Lines/rev", Adjustable(1000, 100, 1e10),
                "Lines of the encoder; it counts four a line"};

  Signals signals_{
      Bench(),
      {{loop_.vC, "vC", "RPM", Hidden(10, RadToRpm), "Command velocity"},
       {loop_.vM, "vM", "RPM", Shown(20, 0, RadToRpm), "Motor velocity"},
       {loop_.vE, "vE", "RPM", Hidden(5, RadToRpm), "Velocity error: what the controller works on"},
       {loop_.vF, "vF", "RPM", Hidden(5, RadToRpm),
        "Feedback velocity: what the controller is told"},
       {loop_.pM, "pM", "Revs", Hidden(0.01, RadToRevs), "Motor position"},
       {loop_.pF, "pF", "Revs", Hidden(0.01, RadToRevs), "Feedback position, as sampled"},
       {loop_.iC, "iC", "Amps", Hidden(2), "Current command: what the controller asks for"},
       {loop_.iF, "iF", "Amps", Shown(2), "Current feedback: the current that flows"},
       {loop_.tE, "tE", "Nm", Hidden(2), "Torque of the current alone: KT iF"},
       {loop_.tD, "tD", "Nm", Shown(2), "Disturbance torque"},
       {loop_.tM, "tM", "Nm", Hidden(2), "Torque that turns the motor"}}};
  OnBench<LowPass2> currentLoop_{Bench(), loop_.currentLoop};
  ZelDController clock_{Bench(), drive_.tSample.Default(), &loop_.clock};

  Analysers analysers_{Bench(), 13};
  ZelWave commandGenerator_{Bench(), "Command Source", {.Index = 8, .FreqHz = 10, .Amplitude = 10}};
  ZelWave disturbanceGenerator_{
      Bench(), "Disturbance Source", {.Index = 1, .FreqHz = 25, .Amplitude = 2}};
  CommandSource command_{Bench(), commandGenerator_, analysers_};
  CommandSource disturbance_{Bench(), disturbanceGenerator_, analysers_};
  ZelDPi& controller_ = clock_.Add<ZelDPi>(&kvi_, &kvp_, CurrentLimit, WindUpFactor);
  ZelDLowPass1& decouplingFilter_ = clock_.Add<ZelDLowPass1>(ddLpf_.Default(), 0.0);
  ZelScope scope_{Bench(), "MainScope"};
};

MDisturbance::MDisturbance(const std::string& name) : FusedModel(name, 1e-5) {
  SetFiles("BWTX07-01.bmp", "BWTX07-01.txt");
  analysers_.AddSetup("Disturbance Source", "tD", "vM");
  analysers_.AddSetup("Command Source", "vC", "vM");
  analysers_.AddVelocitySetups();
  analysers_.AddSetup("Open+180", "vE", "vF", 180.0);
  analysers_.SetLoop(&loop_.clock, [this] {
    return ModelLoop{
        "vE", "vF", false, drive_.tSample.Value(), {{&bodeType_, Command}}, {{&useRes_, No}}};
  });
}

void MDisturbance::Sample(Loop& s, double t) {
  s.pF = EncoderPosition(s.pM, useRes_, res_);
  s.vF = memory_.PreviousPF.Difference(s.pF) / drive_.tSample.Value();
  const double decoupling = -kdd_.Value() * decouplingFilter_.Step(s.tD) / ktEst_.Value();
  s.iC = controller_.Update(s.vC, s.vF, decoupling);
  memory_.OutputInstant = drive_.OutputInstant(t);
  s.vE = controller_.Error();
}

void MDisturbance::HandOnChanges() {
  drive_.HandOnChanges(loop_.clock, loop_.currentLoop);
  HandOn(ddLpf_, [&](double hz) { decouplingFilter_.SetFrequency(hz); });
}

void MDisturbance::Equations(Loop& s, double t) {
  const bool exciteDisturbance = bodeType_.Choice() == Disturbance;
  s.vC = (exciteDisturbance ? commandGenerator_.Output() : command_.Value()) * RpmToRad;
  s.tD = exciteDisturbance ? disturbance_.Value() : disturbanceGenerator_.Output();
  if (s.clock.SampleDue()) Sample(s, t);
  s.iF = FollowCurrent(s.currentLoop, s.iC, t, memory_.OutputInstant);
  s.tE = s.iF * motor_.kt.Value();
  s.tM = s.tE + s.tD;
  TurnInertia(s.tM, motor_.j.Value(), s.vM, s.pM);
}

}  // namespace

std::unique_ptr<ZelModel> MakeDisturbance(const std::string& name) {
  return std::make_unique<MDisturbance>(name);
}

}  // namespace torvane
