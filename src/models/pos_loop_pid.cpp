#include <algorithm>

#include "instruments/scope/scope.h"
#include "kit/command_source.h"
#include "kit/fused_model.h"
#include "kit/position_loop.h"
#include "models/factories.h"

namespace torvane {

namespace {

struct MPosLoopPIDMemory {
  PreviousSample PreviousVPC;
  PreviousSample PreviousPF;
  double OutputInstant = 0.0;
  double Integral = 0.0;
  bool ErrorWasPositive = false;

  void Carry(Carried& carried) {
    PreviousVPC.Carry(carried);
    PreviousPF.Carry(carried);
    carried.Keep(OutputInstant);
    carried.Number(Integral);
    carried.Keep(ErrorWasPositive);
  }
};

/// Sampled PID position controller that commands current directly.
///
///     KPP pE + KPI sum of pE + KPD (vPC - vF) + feed-forward -> limit -> iC, late by TCalc
///     iC -> current loop -> iF -> KT -> tE + tD = tM -> 1/(J s) -> vM -> 1/s -> pM
///     pM -> encoder -> pF -> change per sample -> vF
///     vPC -> sum -> pC - pF = pE
class MPosLoopPID final : public FusedModel<MPosLoopPID, MPosLoopPIDMemory> {
 public:
  explicit MPosLoopPID(const std::string& name);

  using Loop = PositionLoop;
  Loop loop_;

  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) {
    return std::tie(command_, s.vM, s.pM, s.currentLoop, s.clock, commandGenerator_,
                    disturbanceGenerator_);
  }

 private:
  void Sample(Loop& s, double t);
  void Integrate(const Loop& s);

  Constant kpd_{Bench(), "KPD", "", Adjustable(1.1, 0, 1000),
                "Derivative gain of the position loop (Amps per rad/s)"};
  Constant kpp_{Bench(), "KPP", "", Adjustable(10, 0, 1000),
                "Proportional gain of the position loop (Amps per rad)"};
  Constant kpi_{Bench(), "KPI", "", Adjustable(0, 0, 100),
                "Integral gain of the position loop (Amps per rad, each sample)"};
  Constant ikpiSat_{Bench(), "IKPISat", "Amps", Adjustable(3, 0, 20),
                    "Largest current that the integral may ask for"};
  Constant zeroOnMove_{Bench(),
                       "Zero on Move?",
                       {"No", "Yes"},
                       No,
                       "Yes: the integral is emptied while the command moves"};
  Constant zeroOnRev_{Bench(), "Zero on Rev?", {"No", "Yes"}, No, "Without effect in this version"};
  Constant kfv_{Bench(), "KFV", "%", Adjustable(0, -100, 200),
                "Velocity feed-forward: 100 adds 1 Amp per rad/s"};
  Constant kfa_{Bench(), "KFA", "%", Adjustable(0, -100, 1000),
                "Acceleration feed-forward: 100 is the current that J needs"};
  DriveConstants drive_{Bench(), 60};
  MotorConstants motor_{Bench(), "n-m/Amp"};
  Constant res_{Bench(), "Res", "lines/rev", Adjustable(1e10, 6, 2e10),
                "Lines of the encoder; it counts four a line"};

  Signals signals_{
      Bench(), PositionSignals(loop_, "Not used in this loop", Shown(0.001, -0.002, RadToRevs))};
  OnBench<LowPass2> currentLoop_{Bench(), loop_.currentLoop};
  ZelDController clock_{Bench(), drive_.tSample.Default(), &loop_.clock};

  Analysers analysers_{Bench(), 13};
  ZelWave commandGenerator_{
      Bench(), "Command Source", {.Index = 6, .FreqHz = 8, .Amplitude = 60, .DutyCycle = 75}};
  ZelWave disturbanceGenerator_{
      Bench(), "Disturbance Source", {.Index = 8, .FreqHz = 8, .Amplitude = 1}};
  CommandSource command_{Bench(), commandGenerator_, analysers_};
  ZelScope scope_{Bench(), "MainScope"};
};

MPosLoopPID::MPosLoopPID(const std::string& name) : FusedModel(name, 1e-5) {
  SetFiles("BWTX16-02.bmp", "BWTX16-02.txt");
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

void MPosLoopPID::Integrate(const Loop& s) {
  const double error = s.pE;
  const double ki = kpi_.Value();
  const double limit = ikpiSat_.Value();
  double& integral = memory_.Integral;
  integral += error;
  if (integral * ki > limit) integral = limit / ki;
  if (-limit > integral * ki) integral = -limit / ki;
  if (zeroOnMove_.Choice() == Yes && s.vPC != 0.0) integral = 0.0;
  // The list has no third choice, so the integral is never emptied on a reversal: kept as it is.
  constexpr int EmptyOnReversal = 2;
  const bool positive = error > 0.0;
  if (zeroOnRev_.Choice() == EmptyOnReversal && positive != memory_.ErrorWasPositive) {
    integral = 0.0;
  }
  memory_.ErrorWasPositive = positive;
  // A run that overflowed must not carry on into the next one.
  if (!std::isfinite(integral)) integral = 0.0;
}

void MPosLoopPID::Sample(Loop& s, double t) {
  const double period = drive_.tSample.Value();
  const double acceleration = memory_.PreviousVPC.Difference(s.vPC) / period;
  SampleMotion(s, period, res_.Value(), memory_.PreviousPF);
  Integrate(s);
  const double current = kpd_.Value() * (s.vPC - s.vF) + kpp_.Value() * s.pE +
                         kpi_.Value() * memory_.Integral + kfv_.Value() * s.vPC * 0.01 +
                         0.01 * kfa_.Value() * acceleration * motor_.j.Value() / motor_.kt.Value();
  s.iC = std::clamp(current, -CurrentLimit, CurrentLimit);
  memory_.OutputInstant = drive_.OutputInstant(t);
}

void MPosLoopPID::HandOnChanges() {
  drive_.HandOnChanges(loop_.clock, loop_.currentLoop);
}

void MPosLoopPID::Equations(Loop& s, double t) {
  s.vPC = command_.Value() * RpmToRad;
  s.tD = disturbanceGenerator_.Output();
  if (s.clock.SampleDue()) Sample(s, t);
  RunMotor(s, t, memory_.OutputInstant, motor_);
}

}  // namespace

std::unique_ptr<ZelModel> MakePosLoopPID(const std::string& name) {
  return std::make_unique<MPosLoopPID>(name);
}

}  // namespace torvane
