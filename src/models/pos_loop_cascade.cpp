#include "instruments/scope/scope.h"
#include "library/d_pi_plus.h"
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

/// Proportional position loop around a sampled PI+ velocity loop, with velocity and acceleration
/// feed-forward.
class MPosLoopCascade final : public ZelModel {
 public:
  explicit MPosLoopCascade(const std::string& name);
  void Derivatives(double t) override;
  void DropClassMemory() override {
    previousVPC = {};
    previousPF = {};
    outputInstant = 0.0;
  }

  auto States() { return std::tuple_cat(std::tie(motion_.vM, motion_.pM), currentLoop_.States()); }
  auto Blocks() { return std::tie(currentLoop_, commandGenerator_, disturbanceGenerator_, clock_); }

 private:
  void Sample(double t);

  ZelSolver& solver_ =
      SetSolver(std::make_unique<FusedSolver<MPosLoopCascade>>(Bench(), 1e-5, *this));

  Constant kp_{Bench(), "KP", "mps/m", 250, 0, 1000};
  Constant kvp_{Bench(), "KVP", "", 1.2, 0, 1000};
  Constant kvi_{Bench(), "KVI", "", 250, 0, 10000};
  Constant kvfr_{Bench(), "KVFR", "%", 65, 0, 200};
  Constant kfv_{Bench(), "KFV", "%", 0, 0, 200};
  Constant kfa_{Bench(), "KFA", "%", 0, 0, 1000};
  Constant cLoop_{Bench(), "CLoop", "Hz", 800, 100, 10000};
  Constant tSample_{Bench(), "TSample", "Sec", 0.00025, 0.0001, 100};
  Constant tCalc_{Bench(), "TCalc", "%", 60, 0, 95};
  Constant kt_{Bench(), "KT", "n-m/Amp", 1, 0.1, 10};
  Constant j_{Bench(), "J", "kg-m^2", 0.002, 1e-6, 1};
  Constant res_{Bench(), "Res", "lines/rev", 1e10, 6, 2e10};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};
  Variable vPC_{Bench(), "vPC", "RPM", Shown(20, 0, RadToRpm)};
  Variable vC_{Bench(), "vC", "RPM", Hidden(20, RadToRpm)};
  MotionSignals motion_{Bench(), Shown(0.005, -0.01, RadToRevs)};
  TorqueSignals torque_{Bench()};

  ZelLowPass2 currentLoop_{Bench(), 600, Butterworth};
  Analysers analysers_{Bench(), 13};
  ZelWave commandGenerator_{
      Bench(), "Command Source", {.Index = 6, .FreqHz = 8, .Amplitude = 60, .DutyCycle = 75}};
  ZelWave disturbanceGenerator_{
      Bench(), "Disturbance Source", {.Index = 8, .FreqHz = 8, .Amplitude = 1}};
  CommandSource command_{Bench(), commandGenerator_, analysers_};
  ZelDController clock_{Bench(), tSample_.Default()};
  ZelDPiPlus& controller_ =
      clock_.Add<ZelDPiPlus>(&kvi_, &kvp_, &kvfr_, CurrentLimit, WindUpFactor);
  ZelScope scope_{Bench(), "MainScope"};
};

MPosLoopCascade::MPosLoopCascade(const std::string& name) : ZelModel(name) {
  SetFiles("BWTX16-01.bmp", "BWTX16-01.txt");
  scope_.SetHorizontalScale(scope_.TimeChannel(), 0.02);
  analysers_.AddSetup("Closed", "vPC", "vF");
}

void MPosLoopCascade::Sample(double t) {
  auto& m = motion_;
  const double period = tSample_.Value();
  m.pC.Value += vPC_.Value * period;
  const double acceleration = previousVPC.Difference(vPC_.Value) / period;
  m.pF.Value = FloorToStep(m.pM.Value, EncoderCount(res_.Value()));
  m.vF.Value = previousPF.Difference(m.pF.Value) / period;
  m.pE.Value = m.pC.Value - m.pF.Value;
  vC_.Value = m.pE.Value * kp_.Value() + kfv_.Value() * vPC_.Value * 0.01;
  // Without proportional velocity gain no velocity command could make the acceleration.
  if (kvp_.Value() != 0.0) {
    vC_.Value += 0.01 * kfa_.Value() * acceleration * j_.Value() / (kt_.Value() * kvp_.Value());
  }
  torque_.iC.Value = controller_.Update(vC_.Value, m.vF.Value, 0.0);
  outputInstant = OutputInstant(t, tCalc_, tSample_);
  m.vE.Value = controller_.Error();
}

void MPosLoopCascade::Derivatives(double t) {
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

std::unique_ptr<ZelModel> MakePosLoopCascade(const std::string& name) {
  return std::make_unique<MPosLoopCascade>(name);
}

}  // namespace torvane
