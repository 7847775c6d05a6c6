#include <cmath>

#include "instruments/scope/scope.h"
#include "library/d_low_pass1.h"
#include "library/d_pi_plus.h"
#include "models/command_source.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/velocity_loop.h"

namespace torvane {

namespace {

// Class memory.
PreviousSample previousPF;
double outputInstant = 0.0;

constexpr double ArcMinute = 1.0 / (60.0 * RadToDeg);  // radians

/// Sampled PI velocity loop on a position sensor of coarse resolution and cyclic error, with two
/// low-pass filters for the velocity estimate.
///
///     vC -> PI -> iC, late by TCalc -> current loop -> iF
///     iF -> KT -> tM -> 1/(J s) -> vM -> 1/s -> pM
///     pM + pE -> counts -> pF -> change per sample -> vF, fed back as it is or filtered
///     vF -> LPF1 -> LPF2 -> vF-Filt
class MMotorFeedback final : public ZelModel {
 public:
  explicit MMotorFeedback(const std::string& name);
  void Derivatives(double t) override { solver_.Derivatives(t); }
  void DropClassMemory() override {
    previousPF = {};
    outputInstant = 0.0;
  }

 private:
  friend class FusedSolver<MMotorFeedback>;

  struct Loop;
  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) { return std::tie(command_, s.vM, s.pM, s.currentLoop, s.clock, generator_); }
  void Sample(Loop& s, double t);

  FusedSolver<MMotorFeedback>& solver_ =
      SetSolver(std::make_unique<FusedSolver<MMotorFeedback>>(Bench(), 1e-5, *this));

  Constant res_{Bench(), "Res", "Counts/rev", 4000, 100, 1e10};
  Constant kvp_{Bench(), "KVP", "", 0.72, 0, 1000};
  Constant kvi_{Bench(), "KVI", "", 100, 0, 10000};
  Constant useFbFilt_{Bench(), "Use FbFilt?", {"No", "Yes"}};
  Constant useLpf1_{Bench(), "Use LPF1?", {"No", "Yes"}, Yes};
  Constant lpf1_{Bench(), "LPF1", "Hz", 800, 0, 10000};
  Constant useLpf2_{Bench(), "Use LPF2?", {"No", "Yes"}};
  Constant lpf2_{Bench(), "LPF2", "Hz", 800, 0, 10000};
  DriveConstants drive_{Bench()};
  MotorConstants motor_{Bench(), "Nm/Amp", 10000, 10000};
  Constant posErr_{Bench(), "Pos Err", "arc-min", 0, -100, 100};
  Constant errHarm_{Bench(), "Err Harm", "", 2, 0, 64};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};

  struct Loop : OnBench {
    Loop(ZelBenchTop& bench, double period) : OnBench(bench), clock(bench, period) {}

    Variable vC{Bench(), "vC", "RPM", Hidden(50, RadToRpm)};
    StateVariable vM{Bench(), "vM", "RPM", 0, Shown(100, -200, RadToRpm)};
    Variable vE{Bench(), "vE", "RPM", Hidden(50, RadToRpm)};
    Variable vF{Bench(), "vF", "RPM", Shown(100, 200, RadToRpm)};
    Variable vFFilt{Bench(), "vF-Filt", "RPM", Hidden(50, RadToRpm)};
    StateVariable pM{Bench(), "pM", "Deg", 0, Hidden(50, RadToDeg)};
    Variable pF{Bench(), "pF", "Deg", Hidden(50, RadToDeg)};
    Variable pE{Bench(), "pE", "Deg", Hidden(0.2, RadToDeg)};
    Variable pC{Bench(), "pC", "Deg", Hidden(50, RadToDeg)};
    Variable iC{Bench(), "iC", "Amps", Hidden(5)};
    Variable iF{Bench(), "iF", "Amps", Hidden(5)};
    Variable tM{Bench(), "tM", "Nm", Hidden(5)};
    ZelLowPass2 currentLoop{Bench(), 600, Butterworth};
    ZelDController clock;
  };
  Loop loop_{Bench(), drive_.tSample.Default()};

  // Well above the noise of the sensor's resolution.
  Analysers analysers_{Bench(), 13, {.Amplitude = 150}};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 7, .Amplitude = 100}};
  CommandSource command_{Bench(), generator_, analysers_};
  ZelDPi& controller_ = loop_.clock.Add<ZelDPi>(&kvi_, &kvp_, CurrentLimit, WindUpFactor);
  ZelDLowPass1& filter1_ = loop_.clock.Add<ZelDLowPass1>(lpf1_.Default(), 0.0);
  ZelDLowPass1& filter2_ = loop_.clock.Add<ZelDLowPass1>(lpf2_.Default(), 0.0);
  ZelScope scope_{Bench(), "MainScope"};
};

MMotorFeedback::MMotorFeedback(const std::string& name) : ZelModel(name) {
  SetFiles("BWTX13-01.bmp", "BWTX13-01.txt");
  scope_.SetHorizontalScale(scope_.TimeChannel(), 0.02);
  analysers_.AddVelocitySetups();
}

void MMotorFeedback::Sample(Loop& s, double t) {
  s.pC.Value += s.vC.Value * drive_.tSample.Value();
  s.pE.Value = posErr_.Value() * ArcMinute * std::sin(errHarm_.Value() * s.pM.Value);
  s.pF.Value = FloorToStep(s.pM.Value + s.pE.Value, 1.0 / (res_.Value() * RadToRevs));
  s.vF.Value = previousPF.Difference(s.pF.Value) / drive_.tSample.Value();
  // Both filters run all the time, so that switching one in does not start it from rest.
  const double once = filter1_.Step(s.vF.Value);
  s.vFFilt.Value = useLpf1_.Choice() == Yes ? once : s.vF.Value;
  const double twice = filter2_.Step(s.vFFilt.Value);
  if (useLpf2_.Choice() == Yes) s.vFFilt.Value = twice;
  const double feedback = useFbFilt_.Choice() == Yes ? s.vFFilt.Value : s.vF.Value;
  s.iC.Value = controller_.Update(s.vC.Value, feedback, 0.0);
  outputInstant = drive_.OutputInstant(t);
  s.vE.Value = controller_.Error();
}

void MMotorFeedback::HandOnChanges() {
  drive_.HandOnChanges(loop_.clock, loop_.currentLoop);
  HandOn(lpf1_, [&](double hz) { filter1_.SetFrequency(hz); });
  HandOn(lpf2_, [&](double hz) { filter2_.SetFrequency(hz); });
}

void MMotorFeedback::Equations(Loop& s, double t) {
  s.vC.Value = command_.Value() * RpmToRad;
  if (s.clock.SampleDue()) Sample(s, t);
  s.iF.Value = FollowCurrent(s.currentLoop, s.iC.Value, t, outputInstant);
  s.tM.Value = s.iF.Value * motor_.kt.Value();
  TurnInertia(s.tM.Value, motor_.j.Value(), s.vM, s.pM);
}

}  // namespace

std::unique_ptr<ZelModel> MakeMotorFeedback(const std::string& name) {
  return std::make_unique<MMotorFeedback>(name);
}

}  // namespace torvane
