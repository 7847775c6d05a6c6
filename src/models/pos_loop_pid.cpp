#include <algorithm>

#include "instruments/scope/scope.h"
#include "models/command_source.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/position_signals.h"

namespace torvane {

namespace {

// Kept once for the class on purpose: a new model or a reset goes on from what was seen last.
PreviousSample previousVPC;
PreviousSample previousPF;
double outputInstant = 0.0;
double integral = 0.0;
bool errorWasPositive = false;

/// Sampled PID position controller that commands current directly.
class MPosLoopPID final : public ZelModel {
 public:
  explicit MPosLoopPID(const std::string& name);
  void Derivatives(double t) override;
  void DropClassMemory() override {
    previousVPC = {};
    previousPF = {};
    outputInstant = 0.0;
    integral = 0.0;
    errorWasPositive = false;
  }

  auto States() { return std::tuple_cat(std::tie(motion_.vM, motion_.pM), currentLoop_.States()); }
  auto Blocks() { return std::tie(currentLoop_, commandGenerator_, disturbanceGenerator_, clock_); }

 private:
  void Sample(double t);
  void Integrate();

  ZelSolver& solver_ = SetSolver(std::make_unique<FusedSolver<MPosLoopPID>>(Bench(), 1e-5, *this));

  Constant kpd_{Bench(), "KPD", "", 1.1, 0, 1000};
  Constant kpp_{Bench(), "KPP", "", 10, 0, 1000};
  Constant kpi_{Bench(), "KPI", "", 0, 0, 100};
  Constant ikpiSat_{Bench(), "IKPISat", "Amps", 3, 0, 20};
  Constant zeroOnMove_{Bench(), "Zero on Move?", {"No", "Yes"}};
  Constant zeroOnRev_{Bench(), "Zero on Rev?", {"No", "Yes"}};
  Constant kfv_{Bench(), "KFV", "%", 0, -100, 200};
  Constant kfa_{Bench(), "KFA", "%", 0, -100, 1000};
  Constant cLoop_{Bench(), "CLoop", "Hz", 800, 100, 10000};
  Constant tSample_{Bench(), "TSample", "Sec", 0.00025, 0.0001, 100};
  Constant tCalc_{Bench(), "TCalc", "%", 60, 0, 95};
  Constant kt_{Bench(), "KT", "n-m/Amp", 1, 0.1, 10};
  Constant j_{Bench(), "J", "kg-m^2", 0.002, 1e-6, 1};
  Constant res_{Bench(), "Res", "lines/rev", 1e10, 6, 2e10};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};
  Variable vPC_{Bench(), "vPC", "RPM", Shown(20, 0, RadToRpm)};
  MotionSignals motion_{Bench(), Shown(0.001, -0.002, RadToRevs)};
  TorqueSignals torque_{Bench()};

  ZelLowPass2 currentLoop_{Bench(), 600, Butterworth};
  Analysers analysers_{Bench(), 13};
  ZelWave commandGenerator_{
      Bench(), "Command Source", {.Index = 6, .FreqHz = 8, .Amplitude = 60, .DutyCycle = 75}};
  ZelWave disturbanceGenerator_{
      Bench(), "Disturbance Source", {.Index = 8, .FreqHz = 8, .Amplitude = 1}};
  CommandSource command_{Bench(), commandGenerator_, analysers_};
  ZelDController clock_{Bench(), tSample_.Default()};
  ZelScope scope_{Bench(), "MainScope"};
};

MPosLoopPID::MPosLoopPID(const std::string& name) : ZelModel(name) {
  SetFiles("BWTX16-02.bmp", "BWTX16-02.txt");
  scope_.SetHorizontalScale(scope_.TimeChannel(), 0.02);
  analysers_.AddSetup("Closed", "vPC", "vF");
}

void MPosLoopPID::Integrate() {
  const double error = motion_.pE.Value;
  const double ki = kpi_.Value();
  const double limit = ikpiSat_.Value();
  integral += error;
  if (integral * ki > limit) integral = limit / ki;
  if (-limit > integral * ki) integral = -limit / ki;
  if (zeroOnMove_.Choice() == Yes && vPC_.Value != 0.0) integral = 0.0;
  // The list has no third choice, so the integral is never emptied on a reversal: kept as it is.
  constexpr int EmptyOnReversal = 2;
  const bool positive = error > 0.0;
  if (zeroOnRev_.Choice() == EmptyOnReversal && positive != errorWasPositive) integral = 0.0;
  errorWasPositive = positive;
  // A run that overflowed must not carry on into the next one.
  if (!std::isfinite(integral)) integral = 0.0;
}

void MPosLoopPID::Sample(double t) {
  auto& m = motion_;
  const double period = tSample_.Value();
  m.pC.Value += vPC_.Value * period;
  const double acceleration = previousVPC.Difference(vPC_.Value) / period;
  m.pF.Value = FloorToStep(m.pM.Value, EncoderCount(res_.Value()));
  m.vF.Value = previousPF.Difference(m.pF.Value) / period;
  m.pE.Value = m.pC.Value - m.pF.Value;
  Integrate();
  const double current = kpd_.Value() * (vPC_.Value - m.vF.Value) + kpp_.Value() * m.pE.Value +
                         kpi_.Value() * integral + kfv_.Value() * vPC_.Value * 0.01 +
                         0.01 * kfa_.Value() * acceleration * j_.Value() / kt_.Value();
  torque_.iC.Value = std::clamp(current, -CurrentLimit, CurrentLimit);
  outputInstant = OutputInstant(t, tCalc_, tSample_);
}

void MPosLoopPID::Derivatives(double t) {
  HandOn(tSample_, [&](double period) { clock_.SetPeriod(period); });
  HandOn(cLoop_, [&](double hz) { currentLoop_.SetFrequency(hz); });
  vPC_.Value = command_.Value() * RpmToRad;
  torque_.tD.Value = disturbanceGenerator_.Output();
  if (clock_.SampleDue()) Sample(t);
  if (t >= outputInstant) currentLoop_.SetInput(torque_.iC.Value);
  torque_.iF.Value = currentLoop_.Output();
  torque_.tE.Value = torque_.iF.Value * kt_.Value();
  torque_.tM.Value = torque_.tE.Value + torque_.tD.Value;
  TurnInertia(torque_.tM.Value, j_.Value(), motion_.vM, motion_.pM);
}

}  // namespace

std::unique_ptr<ZelModel> MakePosLoopPID(const std::string& name) {
  return std::make_unique<MPosLoopPID>(name);
}

}  // namespace torvane
