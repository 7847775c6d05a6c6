#include <algorithm>

#include "instruments/scope/scope.h"
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
double integral = 0.0;
bool errorWasPositive = false;

/// Sampled PID position controller that commands current directly.
///
///     KPP pE + KPI sum of pE + KPD (vPC - vF) + feed-forward -> limit -> iC, late by TCalc
///     iC -> current loop -> iF -> KT -> tE + tD = tM -> 1/(J s) -> vM -> 1/s -> pM
///     pM -> encoder -> pF -> change per sample -> vF
///     vPC -> sum -> pC - pF = pE
class MPosLoopPID final : public ZelModel {
 public:
  explicit MPosLoopPID(const std::string& name);
  void Derivatives(double t) override { solver_.Derivatives(t); }
  void DropClassMemory() override {
    previousVPC = {};
    previousPF = {};
    outputInstant = 0.0;
    integral = 0.0;
    errorWasPositive = false;
  }

 private:
  friend class FusedSolver<MPosLoopPID>;

  struct Loop;
  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) {
    return std::tie(command_, s.vM, s.pM, s.currentLoop, s.clock, commandGenerator_,
                    disturbanceGenerator_);
  }
  void Sample(Loop& s, double t);
  void Integrate(const Loop& s);

  FusedSolver<MPosLoopPID>& solver_ =
      SetSolver(std::make_unique<FusedSolver<MPosLoopPID>>(Bench(), 1e-5, *this));

  Constant kpd_{Bench(), "KPD", "", 1.1, 0, 1000};
  Constant kpp_{Bench(), "KPP", "", 10, 0, 1000};
  Constant kpi_{Bench(), "KPI", "", 0, 0, 100};
  Constant ikpiSat_{Bench(), "IKPISat", "Amps", 3, 0, 20};
  Constant zeroOnMove_{Bench(), "Zero on Move?", {"No", "Yes"}};
  Constant zeroOnRev_{Bench(), "Zero on Rev?", {"No", "Yes"}};
  Constant kfv_{Bench(), "KFV", "%", 0, -100, 200};
  Constant kfa_{Bench(), "KFA", "%", 0, -100, 1000};
  DriveConstants drive_{Bench(), 60};
  MotorConstants motor_{Bench(), "n-m/Amp"};
  Constant res_{Bench(), "Res", "lines/rev", 1e10, 6, 2e10};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};

  struct Loop : PositionCommand, PositionLoop {
    Loop(ZelBenchTop& bench, DisplayDefaults error, double period)
        : PositionCommand(bench), PositionLoop(bench, error, period) {}
  };
  Loop loop_{Bench(), Shown(0.001, -0.002, RadToRevs), drive_.tSample.Default()};

  Analysers analysers_{Bench(), 13};
  ZelWave commandGenerator_{
      Bench(), "Command Source", {.Index = 6, .FreqHz = 8, .Amplitude = 60, .DutyCycle = 75}};
  ZelWave disturbanceGenerator_{
      Bench(), "Disturbance Source", {.Index = 8, .FreqHz = 8, .Amplitude = 1}};
  CommandSource command_{Bench(), commandGenerator_, analysers_};
  ZelScope scope_{Bench(), "MainScope"};
};

MPosLoopPID::MPosLoopPID(const std::string& name) : ZelModel(name) {
  SetFiles("BWTX16-02.bmp", "BWTX16-02.txt");
  scope_.SetHorizontalScale(scope_.TimeChannel(), 0.02);
  analysers_.AddSetup("Closed", "vPC", "vF");
}

void MPosLoopPID::Integrate(const Loop& s) {
  const double error = s.pE.Value;
  const double ki = kpi_.Value();
  const double limit = ikpiSat_.Value();
  integral += error;
  if (integral * ki > limit) integral = limit / ki;
  if (-limit > integral * ki) integral = -limit / ki;
  if (zeroOnMove_.Choice() == Yes && s.vPC.Value != 0.0) integral = 0.0;
  // The list has no third choice, so the integral is never emptied on a reversal: kept as it is.
  constexpr int EmptyOnReversal = 2;
  const bool positive = error > 0.0;
  if (zeroOnRev_.Choice() == EmptyOnReversal && positive != errorWasPositive) integral = 0.0;
  errorWasPositive = positive;
  // A run that overflowed must not carry on into the next one.
  if (!std::isfinite(integral)) integral = 0.0;
}

void MPosLoopPID::Sample(Loop& s, double t) {
  const double period = drive_.tSample.Value();
  const double acceleration = previousVPC.Difference(s.vPC.Value) / period;
  SampleMotion(s, s.vPC.Value, period, res_.Value(), previousPF);
  Integrate(s);
  const double current = kpd_.Value() * (s.vPC.Value - s.vF.Value) + kpp_.Value() * s.pE.Value +
                         kpi_.Value() * integral + kfv_.Value() * s.vPC.Value * 0.01 +
                         0.01 * kfa_.Value() * acceleration * motor_.j.Value() / motor_.kt.Value();
  s.iC.Value = std::clamp(current, -CurrentLimit, CurrentLimit);
  outputInstant = drive_.OutputInstant(t);
}

void MPosLoopPID::HandOnChanges() {
  drive_.HandOnChanges(loop_.clock, loop_.currentLoop);
}

void MPosLoopPID::Equations(Loop& s, double t) {
  s.vPC.Value = command_.Value() * RpmToRad;
  s.tD.Value = disturbanceGenerator_.Output();
  if (s.clock.SampleDue()) Sample(s, t);
  RunMotor(s, t, outputInstant, motor_);
}

}  // namespace

std::unique_ptr<ZelModel> MakePosLoopPID(const std::string& name) {
  return std::make_unique<MPosLoopPID>(name);
}

}  // namespace torvane
