#include "instruments/scope/scope.h"
#include "library/d_pi_plus.h"
#include "models/command_source.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/position_loop.h"

namespace torvane {

namespace {

// Class memory.
PreviousSample previousVPC;
PreviousSample previousPF;
double outputInstant = 0.0;

/// Proportional position loop around a sampled PI+ velocity loop, with velocity and acceleration
/// feed-forward.
///
///     vPC -> sum -> pC - pF = pE -> KP -> + -> vC -> PI+ -> iC, late by TCalc -> current loop
///     vPC -> KFV, change per sample -> KFA J/(KT KVP) -> +
///     iF -> KT -> tE + tD = tM -> 1/(J s) -> vM -> 1/s -> pM
///     pM -> encoder -> pF -> change per sample -> vF, fed back
class MPosLoopCascade final : public ZelModel {
 public:
  explicit MPosLoopCascade(const std::string& name);
  void Derivatives(double t) override { solver_.Derivatives(t); }
  void DropClassMemory() override {
    previousVPC = {};
    previousPF = {};
    outputInstant = 0.0;
  }

 private:
  friend class FusedSolver<MPosLoopCascade>;

  struct Loop;
  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) {
    return std::tie(command_, s.vM, s.pM, s.currentLoop, s.clock, commandGenerator_,
                    disturbanceGenerator_);
  }
  void Sample(Loop& s, double t);

  FusedSolver<MPosLoopCascade>& solver_ =
      SetSolver(std::make_unique<FusedSolver<MPosLoopCascade>>(Bench(), 1e-5, *this));

  Constant kp_{Bench(), "KP", "mps/m", 250, 0, 1000};
  Constant kvp_{Bench(), "KVP", "", 1.2, 0, 1000};
  Constant kvi_{Bench(), "KVI", "", 250, 0, 10000};
  Constant kvfr_{Bench(), "KVFR", "%", 65, 0, 200};
  Constant kfv_{Bench(), "KFV", "%", 0, 0, 200};
  Constant kfa_{Bench(), "KFA", "%", 0, 0, 1000};
  DriveConstants drive_{Bench(), 60};
  MotorConstants motor_{Bench(), "n-m/Amp"};
  Constant res_{Bench(), "Res", "lines/rev", 1e10, 6, 2e10};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};

  struct Command : PositionCommand {
    explicit Command(ZelBenchTop& bench)
        : PositionCommand(bench), vC(bench, "vC", "RPM", Hidden(20, RadToRpm)) {}

    Variable vC;
  };
  struct Loop : Command, PositionLoop {
    Loop(ZelBenchTop& bench, DisplayDefaults error, double period)
        : Command(bench), PositionLoop(bench, error, period) {}
  };
  Loop loop_{Bench(), Shown(0.005, -0.01, RadToRevs), drive_.tSample.Default()};

  Analysers analysers_{Bench(), 13};
  ZelWave commandGenerator_{
      Bench(), "Command Source", {.Index = 6, .FreqHz = 8, .Amplitude = 60, .DutyCycle = 75}};
  ZelWave disturbanceGenerator_{
      Bench(), "Disturbance Source", {.Index = 8, .FreqHz = 8, .Amplitude = 1}};
  CommandSource command_{Bench(), commandGenerator_, analysers_};
  ZelDPiPlus& controller_ =
      loop_.clock.Add<ZelDPiPlus>(&kvi_, &kvp_, &kvfr_, CurrentLimit, WindUpFactor);
  ZelScope scope_{Bench(), "MainScope"};
};

MPosLoopCascade::MPosLoopCascade(const std::string& name) : ZelModel(name) {
  SetFiles("BWTX16-01.bmp", "BWTX16-01.txt");
  scope_.SetHorizontalScale(scope_.TimeChannel(), 0.02);
  analysers_.AddSetup("Closed", "vPC", "vF");
}

void MPosLoopCascade::Sample(Loop& s, double t) {
  const double period = drive_.tSample.Value();
  const double acceleration = previousVPC.Difference(s.vPC.Value) / period;
  SampleMotion(s, s.vPC.Value, period, res_.Value(), previousPF);
  s.vC.Value = s.pE.Value * kp_.Value() + kfv_.Value() * s.vPC.Value * 0.01;
  // Without proportional velocity gain no velocity command could make the acceleration.
  if (kvp_.Value() != 0.0) {
    s.vC.Value +=
        0.01 * kfa_.Value() * acceleration * motor_.j.Value() / (motor_.kt.Value() * kvp_.Value());
  }
  s.iC.Value = controller_.Update(s.vC.Value, s.vF.Value, 0.0);
  outputInstant = drive_.OutputInstant(t);
  s.vE.Value = controller_.Error();
}

void MPosLoopCascade::HandOnChanges() {
  drive_.HandOnChanges(loop_.clock, loop_.currentLoop);
}

void MPosLoopCascade::Equations(Loop& s, double t) {
  s.vPC.Value = command_.Value() * RpmToRad;
  s.tD.Value = disturbanceGenerator_.Output();
  if (s.clock.SampleDue()) Sample(s, t);
  RunMotor(s, t, outputInstant, motor_);
}

}  // namespace

std::unique_ptr<ZelModel> MakePosLoopCascade(const std::string& name) {
  return std::make_unique<MPosLoopCascade>(name);
}

}  // namespace torvane
