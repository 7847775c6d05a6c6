#include <cmath>

#include "instruments/scope/scope.h"
#include "library/d_low_pass1.h"
#include "library/d_pi_plus.h"
#include "models/command_source.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/velocity_signals.h"

namespace torvane {

namespace {

// Kept once for the class on purpose: a new model or a reset goes on from what was seen last.
PreviousSample previousPF;
double outputInstant = 0.0;

constexpr double ArcMinute = 1.0 / (60.0 * RadToDeg);  // radians

/// Sampled PI velocity loop on a position sensor of coarse resolution and cyclic error, with two
/// low-pass filters for the velocity estimate.
class MMotorFeedback final : public ZelModel {
 public:
  explicit MMotorFeedback(const std::string& name);
  void Derivatives(double t) override;
  void DropClassMemory() override {
    previousPF = {};
    outputInstant = 0.0;
  }

  auto States() { return std::tuple_cat(std::tie(vM_, pM_), currentLoop_.States()); }
  auto Blocks() { return std::tie(currentLoop_, generator_, clock_); }

 private:
  void Sample(double t);

  ZelSolver& solver_ =
      SetSolver(std::make_unique<FusedSolver<MMotorFeedback>>(Bench(), 1e-5, *this));

  Constant res_{Bench(), "Res", "Counts/rev", 4000, 100, 1e10};
  Constant kvp_{Bench(), "KVP", "", 0.72, 0, 1000};
  Constant kvi_{Bench(), "KVI", "", 100, 0, 10000};
  Constant useFbFilt_{Bench(), "Use FbFilt?", {"No", "Yes"}};
  Constant useLpf1_{Bench(), "Use LPF1?", {"No", "Yes"}, Yes};
  Constant lpf1_{Bench(), "LPF1", "Hz", 800, 0, 10000};
  Constant useLpf2_{Bench(), "Use LPF2?", {"No", "Yes"}};
  Constant lpf2_{Bench(), "LPF2", "Hz", 800, 0, 10000};
  Constant cLoop_{Bench(), "CLoop", "Hz", 800, 100, 10000};
  Constant tSample_{Bench(), "TSample", "Sec", 0.00025, 0.0001, 100};
  Constant tCalc_{Bench(), "TCalc", "%", 65, 0, 95};
  Constant kt_{Bench(), "KT", "Nm/Amp", 1, 0.1, 10000};
  Constant j_{Bench(), "J", "kg-m^2", 0.002, 1e-6, 10000};
  Constant posErr_{Bench(), "Pos Err", "arc-min", 0, -100, 100};
  Constant errHarm_{Bench(), "Err Harm", "", 2, 0, 64};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};
  Variable vC_{Bench(), "vC", "RPM", Hidden(50, RadToRpm)};
  StateVariable vM_{Bench(), "vM", "RPM", 0, Shown(100, -200, RadToRpm)};
  Variable vE_{Bench(), "vE", "RPM", Hidden(50, RadToRpm)};
  Variable vF_{Bench(), "vF", "RPM", Shown(100, 200, RadToRpm)};
  Variable vFFilt_{Bench(), "vF-Filt", "RPM", Hidden(50, RadToRpm)};
  StateVariable pM_{Bench(), "pM", "Deg", 0, Hidden(50, RadToDeg)};
  Variable pF_{Bench(), "pF", "Deg", Hidden(50, RadToDeg)};
  Variable pE_{Bench(), "pE", "Deg", Hidden(0.2, RadToDeg)};
  Variable pC_{Bench(), "pC", "Deg", Hidden(50, RadToDeg)};
  Variable iC_{Bench(), "iC", "Amps", Hidden(5)};
  Variable iF_{Bench(), "iF", "Amps", Hidden(5)};
  Variable tM_{Bench(), "tM", "Nm", Hidden(5)};

  ZelLowPass2 currentLoop_{Bench(), 600, Butterworth};
  // Well above the noise of the sensor's resolution.
  Analysers analysers_{Bench(), 13, {.Amplitude = 150}};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 7, .Amplitude = 100}};
  CommandSource command_{Bench(), generator_, analysers_};
  ZelDController clock_{Bench(), tSample_.Default()};
  ZelDPi& controller_ = clock_.Add<ZelDPi>(&kvi_, &kvp_, CurrentLimit, WindUpFactor);
  ZelDLowPass1& filter1_ = clock_.Add<ZelDLowPass1>(lpf1_.Default(), 0.0);
  ZelDLowPass1& filter2_ = clock_.Add<ZelDLowPass1>(lpf2_.Default(), 0.0);
  ZelScope scope_{Bench(), "MainScope"};
};

MMotorFeedback::MMotorFeedback(const std::string& name) : ZelModel(name) {
  SetFiles("BWTX13-01.bmp", "BWTX13-01.txt");
  scope_.SetHorizontalScale(scope_.TimeChannel(), 0.02);
  analysers_.AddVelocitySetups();
}

void MMotorFeedback::Sample(double t) {
  pC_.Value += vC_.Value * tSample_.Value();
  pE_.Value = posErr_.Value() * ArcMinute * std::sin(errHarm_.Value() * pM_.Value);
  pF_.Value = FloorToStep(pM_.Value + pE_.Value, 1.0 / (res_.Value() * RadToRevs));
  vF_.Value = previousPF.Difference(pF_.Value) / tSample_.Value();
  // Both filters run all the time, so that switching one in does not start it from rest.
  const double once = filter1_.Step(vF_.Value);
  vFFilt_.Value = useLpf1_.Choice() == Yes ? once : vF_.Value;
  const double twice = filter2_.Step(vFFilt_.Value);
  if (useLpf2_.Choice() == Yes) vFFilt_.Value = twice;
  const double feedback = useFbFilt_.Choice() == Yes ? vFFilt_.Value : vF_.Value;
  iC_.Value = controller_.Update(vC_.Value, feedback, 0.0);
  outputInstant = OutputInstant(t, tCalc_, tSample_);
  vE_.Value = controller_.Error();
}

void MMotorFeedback::Derivatives(double t) {
  HandOn(tSample_, [&](double period) { clock_.SetPeriod(period); });
  HandOn(cLoop_, [&](double hz) { currentLoop_.SetFrequency(hz); });
  HandOn(lpf1_, [&](double hz) { filter1_.SetFrequency(hz); });
  HandOn(lpf2_, [&](double hz) { filter2_.SetFrequency(hz); });
  vC_.Value = command_.Value() * RpmToRad;
  if (clock_.SampleDue()) Sample(t);
  if (t >= outputInstant) currentLoop_.SetInput(iC_.Value);
  iF_.Value = currentLoop_.Output();
  tM_.Value = iF_.Value * kt_.Value();
  TurnInertia(tM_.Value, j_.Value(), vM_, pM_);
}

}  // namespace

std::unique_ptr<ZelModel> MakeMotorFeedback(const std::string& name) {
  return std::make_unique<MMotorFeedback>(name);
}

}  // namespace torvane
