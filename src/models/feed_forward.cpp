#include "instruments/scope/scope.h"
#include "library/d_notch.h"
#include "library/d_pi_plus.h"
#include "models/command_source.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/velocity_signals.h"

namespace torvane {

namespace {

// Kept once for the class on purpose: a new model or a reset goes on from what was seen last.
PreviousSample previousPF;
PreviousSample previousVC;
double outputInstant = 0.0;

/// Sampled PI velocity loop with acceleration feed-forward, with or without the inverse of the
/// power converter in its path. The estimates scale the feed-forward only; the plant has its own
/// constants.
class MFeedForward final : public ZelModel {
 public:
  explicit MFeedForward(const std::string& name);
  void Derivatives(double t) override;
  void DropClassMemory() override {
    previousPF = {};
    previousVC = {};
    outputInstant = 0.0;
  }

  auto States() {
    return std::tuple_cat(std::tie(signals_.vM, signals_.pM), currentLoop_.States());
  }
  auto Blocks() { return std::tie(currentLoop_, generator_, clock_); }

 private:
  void Sample(double t);

  ZelSolver& solver_ = SetSolver(std::make_unique<FusedSolver<MFeedForward>>(Bench(), 1e-5, *this));

  Constant kvp_{Bench(), "KVP", "", 0.72, 0, 1000};
  Constant kvi_{Bench(), "KVI", "", 100, 0, 10000};
  Constant kvf_{Bench(), "KVF", "%", 0, -100, 100};
  Constant cLoop_{Bench(), "CLoop", "Hz", 800, 100, 10000};
  Constant tSample_{Bench(), "TSample", "Sec", 0.00025, 0.0001, 100};
  Constant tCalc_{Bench(), "TCalc", "%", 65, 0, 95};
  Constant ktEst_{Bench(), "KT-Est", "Nm/Amp", 1, 0.1, 10};
  Constant jEst_{Bench(), "J-Est", "kg-m^2", 0.002, 1e-6, 1};
  Constant kt_{Bench(), "KT", "Nm/Amp", 1, 0.1, 10};
  Constant j_{Bench(), "J", "kg-m^2", 0.002, 1e-6, 1};
  Constant useInversePC_{Bench(), "Use Inv. PC", {"No", "Yes"}};
  Constant cLoopEst_{Bench(), "CLoop-Est", "Hz", 800, 100, 10000};
  Constant feedback_{Bench(), "Feedback", {"Tach", "Encoder"}};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};
  VelocitySignals signals_{Bench(), 10, Shown(1, -2)};

  ZelLowPass2 currentLoop_{Bench(), 600, Butterworth};
  Analysers analysers_{Bench(), 13};
  ZelWave generator_{
      Bench(), "MainWaveGen", {.Index = 6, .FreqHz = 25, .Amplitude = 30, .DutyCycle = 36}};
  CommandSource command_{Bench(), generator_, analysers_};
  ZelDController clock_{Bench(), tSample_.Default()};
  ZelDPi& controller_ = clock_.Add<ZelDPi>(&kvi_, &kvp_, CurrentLimit, WindUpFactor);
  ZelDNotch& inversePowerConverter_ =
      clock_.Add<ZelDNotch>(2000.0, Butterworth, 800.0, Butterworth, 0.0);
  ZelScope scope_{Bench(), "MainScope"};
};

MFeedForward::MFeedForward(const std::string& name) : ZelModel(name) {
  SetFiles("BWTX08-01.bmp", "BWTX08-01.txt");
  analysers_.AddVelocitySetups();
}

void MFeedForward::Sample(double t) {
  auto& s = signals_;
  s.pF.Value = s.pM.Value;
  const double difference = previousPF.Difference(s.pF.Value) / tSample_.Value();
  s.vF.Value = feedback_.Choice() == Encoder ? difference : s.vM.Value;
  const double acceleration = previousVC.Difference(s.vC.Value) / tSample_.Value();
  const double inverse = inversePowerConverter_.Step(acceleration);
  s.iC.Value = controller_.Update(s.vC.Value, s.vF.Value, 0.0);
  const double fed = useInversePC_.Choice() == Yes ? inverse : acceleration;
  s.iC.Value += 0.01 * kvf_.Value() * fed * jEst_.Value() / ktEst_.Value();
  outputInstant = OutputInstant(t, tCalc_, tSample_);
  s.vE.Value = controller_.Error();
}

void MFeedForward::Derivatives(double t) {
  auto& s = signals_;
  HandOn(tSample_, [&](double period) { clock_.SetPeriod(period); });
  HandOn(cLoop_, [&](double hz) { currentLoop_.SetFrequency(hz); });
  HandOn(cLoopEst_, [&](double hz) { inversePowerConverter_.SetZeroFrequency(hz); });
  s.vC.Value = command_.Value() * RpmToRad;
  if (clock_.SampleDue()) Sample(t);
  if (t >= outputInstant) currentLoop_.SetInput(s.iC.Value);
  s.iF.Value = currentLoop_.Output();
  s.tM.Value = s.iF.Value * kt_.Value();
  TurnInertia(s.tM.Value, j_.Value(), s.vM, s.pM);
}

}  // namespace

std::unique_ptr<ZelModel> MakeFeedForward(const std::string& name) {
  return std::make_unique<MFeedForward>(name);
}

}  // namespace torvane
