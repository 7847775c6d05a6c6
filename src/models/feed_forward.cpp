#include "instruments/scope/scope.h"
#include "library/d_notch.h"
#include "library/d_pi_plus.h"
#include "models/command_source.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/velocity_loop.h"

namespace torvane {

namespace {

// Class memory.
PreviousSample previousPF;
PreviousSample previousVC;
double outputInstant = 0.0;

/// Sampled PI velocity loop with acceleration feed-forward, with or without the inverse of the
/// power converter in its path. The estimates scale the feed-forward only; the plant has its own
/// constants.
///
///     vC -> PI -> + -> iC, late by TCalc -> current loop -> iF
///     iF -> KT -> tM -> 1/(J s) -> vM -> pM
///     vC -> change per sample -> inverse of the power converter -> KVF J-Est/KT-Est -> +
///     pM -> change per sample -> vF, fed back, or vM itself as from a tachometer
class MFeedForward final : public ZelModel {
 public:
  explicit MFeedForward(const std::string& name);
  void Derivatives(double t) override { solver_.Derivatives(t); }
  void DropClassMemory() override {
    previousPF = {};
    previousVC = {};
    outputInstant = 0.0;
  }

 private:
  friend class FusedSolver<MFeedForward>;

  using Loop = VelocityLoop;

  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) { return std::tie(command_, s.vM, s.pM, s.currentLoop, s.clock, generator_); }
  void Sample(Loop& s, double t);

  FusedSolver<MFeedForward>& solver_ =
      SetSolver(std::make_unique<FusedSolver<MFeedForward>>(Bench(), 1e-5, *this));

  Constant kvp_{Bench(), "KVP", "", 0.72, 0, 1000};
  Constant kvi_{Bench(), "KVI", "", 100, 0, 10000};
  Constant kvf_{Bench(), "KVF", "%", 0, -100, 100};
  DriveConstants drive_{Bench()};
  Constant ktEst_{Bench(), "KT-Est", "Nm/Amp", 1, 0.1, 10};
  Constant jEst_{Bench(), "J-Est", "kg-m^2", 0.002, 1e-6, 1};
  MotorConstants motor_{Bench()};
  Constant useInversePC_{Bench(), "Use Inv. PC", {"No", "Yes"}};
  Constant cLoopEst_{Bench(), "CLoop-Est", "Hz", 800, 100, 10000};
  Constant feedback_{Bench(), "Feedback", {"Tach", "Encoder"}};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};
  Loop loop_{Bench(), drive_.tSample.Default(), 10, Shown(1, -2)};

  Analysers analysers_{Bench(), 13};
  ZelWave generator_{
      Bench(), "MainWaveGen", {.Index = 6, .FreqHz = 25, .Amplitude = 30, .DutyCycle = 36}};
  CommandSource command_{Bench(), generator_, analysers_};
  ZelDPi& controller_ = loop_.clock.Add<ZelDPi>(&kvi_, &kvp_, CurrentLimit, WindUpFactor);
  ZelDNotch& inversePowerConverter_ =
      loop_.clock.Add<ZelDNotch>(2000.0, Butterworth, 800.0, Butterworth, 0.0);
  ZelScope scope_{Bench(), "MainScope"};
};

MFeedForward::MFeedForward(const std::string& name) : ZelModel(name) {
  SetFiles("BWTX08-01.bmp", "BWTX08-01.txt");
  analysers_.AddVelocitySetups();
}

void MFeedForward::Sample(Loop& s, double t) {
  s.pF.Value = s.pM.Value;
  const double difference = previousPF.Difference(s.pF.Value) / drive_.tSample.Value();
  s.vF.Value = feedback_.Choice() == Encoder ? difference : s.vM.Value;
  const double acceleration = previousVC.Difference(s.vC.Value) / drive_.tSample.Value();
  const double inverse = inversePowerConverter_.Step(acceleration);
  s.iC.Value = controller_.Update(s.vC.Value, s.vF.Value, 0.0);
  const double fed = useInversePC_.Choice() == Yes ? inverse : acceleration;
  s.iC.Value += 0.01 * kvf_.Value() * fed * jEst_.Value() / ktEst_.Value();
  outputInstant = drive_.OutputInstant(t);
  s.vE.Value = controller_.Error();
}

void MFeedForward::HandOnChanges() {
  drive_.HandOnChanges(loop_.clock, loop_.currentLoop);
  HandOn(cLoopEst_, [&](double hz) { inversePowerConverter_.SetZeroFrequency(hz); });
}

void MFeedForward::Equations(Loop& s, double t) {
  s.vC.Value = command_.Value() * RpmToRad;
  if (s.clock.SampleDue()) Sample(s, t);
  RunMotor(s, t, outputInstant, motor_);
}

}  // namespace

std::unique_ptr<ZelModel> MakeFeedForward(const std::string& name) {
  return std::make_unique<MFeedForward>(name);
}

}  // namespace torvane
