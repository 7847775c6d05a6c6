#include "instruments/scope/scope.h"
#include "kit/command_source.h"
#include "kit/fused_model.h"
#include "kit/position_loop.h"
#include "library/d_pi_plus.h"
#include "models/factories.h"

namespace torvane {

namespace {

struct MPosLoopCascadeMemory {
  PreviousSample PreviousVPC;
  PreviousSample PreviousPF;
  double OutputInstant = 0.0;

  void Carry(Carried& carried) {
    PreviousVPC.Carry(carried);
    PreviousPF.Carry(carried);
    carried.Keep(OutputInstant);
  }
};

/// Proportional position loop around a sampled PI+ velocity loop, with velocity and acceleration
/// feed-forward.
///
///     vPC -> sum -> pC - pF = pE -> KP -> + -> vC -> PI+ -> iC, late by TCalc -> current loop
///     vPC -> KFV, change per sample -> KFA J/(KT KVP) -> +
///     iF -> KT -> tE + tD = tM -> 1/(J s) -> vM -> 1/s -> pM
///     pM -> encoder -> pF -> change per sample -> vF, fed back
class MPosLoopCascade final : public FusedModel<MPosLoopCascade, MPosLoopCascadeMemory> {
 public:
  explicit MPosLoopCascade(const std::string& name);

  struct Loop : PositionLoop {
    double vC = 0;
  };
  Loop loop_;

  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) {
    return std::tie(command_, s.vM, s.pM, s.currentLoop, s.clock, commandGenerator_,
                    disturbanceGenerator_);
  }

 private:
  void Sample(Loop& s, double t);

  Constant kp_{Bench(), "KP", "mps/m", Adjustable(250, 0, 1000),
               "Gain of the position loop: velocity command per position error"};
  Constant kvp_{Bench(), "KVP", "", Adjustable(1.2, 0, 1000),
                "Proportional gain of the velocity loop (Amps per rad/s)"};
  Constant kvi_{Bench(), "KVI", "", Adjustable(250, 0, 10000),
                "Integral gain of the velocity loop: below it the integral takes over (rad/s)"};
  Constant kvfr_{Bench(), "KVFR", "%", Adjustable(65, 0, 200),
                 "Share of the command that bypasses the command filter: 100 is plain PI"};
  Constant kfv_{Bench(), "KFV", "%", Adjustable(0, 0, 200),
                "Velocity feed-forward: 100 leaves no following error at constant speed"};
  Constant kfa_{Bench(), "KFA", "%", Adjustable(0, 0, 1000),
                "Acceleration feed-forward: 100 is the current that J needs"};
  DriveConstants drive_{Bench(), 60};
  MotorConstants motor_{Bench(), "n-m/Amp"};
  Constant res_{Bench(), "Res", "lines/rev", Adjustable(1e10, 6, 2e10),
                "Lines of the encoder; it counts four a line"};

  Signals signals_{Bench(), PositionSignals(loop_, "Velocity error: what the controller works on",
                                            Shown(0.005, -0.01, RadToRevs),
                                            {{loop_.vC, "vC", "RPM", Hidden(20, RadToRpm),
                                              "Velocity command: output of the position loop"}})};
  OnBench<LowPass2> currentLoop_{Bench(), loop_.currentLoop};
  ZelDController clock_{Bench(), drive_.tSample.Default(), &loop_.clock};

  Analysers analysers_{Bench(), 13};
  ZelWave commandGenerator_{
      Bench(), "Command Source", {.Index = 6, .FreqHz = 8, .Amplitude = 60, .DutyCycle = 75}};
  ZelWave disturbanceGenerator_{
      Bench(), "Disturbance Source", {.Index = 8, .FreqHz = 8, .Amplitude = 1}};
  CommandSource command_{Bench(), commandGenerator_, analysers_};
  ZelDPiPlus& controller_ =
      clock_.Add<ZelDPiPlus>(&kvi_, &kvp_, &kvfr_, CurrentLimit, WindUpFactor);
  ZelScope scope_{Bench(), "MainScope"};
};

MPosLoopCascade::MPosLoopCascade(const std::string& name) : FusedModel(name, 1e-5) {
  SetFiles("BWTX16-01.bmp", "BWTX16-01.txt");
  scope_.SetHorizontalScale(scope_.TimeChannel(), 0.02);
  analysers_.AddSetup("Closed", "vPC", "vF");
  analysers_.SetLoop(&loop_.clock, [this] {
    return ModelLoop{"vPC",
                     "vF",
                     true,
                     drive_.tSample.Value(),
                     {{&kfv_, 0.0}, {&kfa_, 0.0}},
                     {{&res_, res_.Default()}}};
  });
}

void MPosLoopCascade::Sample(Loop& s, double t) {
  const double period = drive_.tSample.Value();
  const double acceleration = memory_.PreviousVPC.Difference(s.vPC) / period;
  SampleMotion(s, period, res_.Value(), memory_.PreviousPF);
  s.vC = s.pE * kp_.Value() + kfv_.Value() * s.vPC * 0.01;
  // Without proportional velocity gain no velocity command could make the acceleration.
  if (kvp_.Value() != 0.0) {
    s.vC +=
        0.01 * kfa_.Value() * acceleration * motor_.j.Value() / (motor_.kt.Value() * kvp_.Value());
  }
  s.iC = controller_.Update(s.vC, s.vF, 0.0);
  memory_.OutputInstant = drive_.OutputInstant(t);
  s.vE = controller_.Error();
}

void MPosLoopCascade::HandOnChanges() {
  drive_.HandOnChanges(loop_.clock, loop_.currentLoop);
}

void MPosLoopCascade::Equations(Loop& s, double t) {
  s.vPC = command_.Value() * RpmToRad;
  s.tD = disturbanceGenerator_.Output();
  if (s.clock.SampleDue()) Sample(s, t);
  RunMotor(s, t, memory_.OutputInstant, motor_);
}

}  // namespace

std::unique_ptr<ZelModel> MakePosLoopCascade(const std::string& name) {
  return std::make_unique<MPosLoopCascade>(name);
}

}  // namespace torvane
