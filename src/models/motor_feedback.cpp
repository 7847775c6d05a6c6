#include <cmath>

#include "instruments/scope/scope.h"
#include "kit/command_source.h"
#include "kit/fused_model.h"
#include "kit/velocity_loop.h"
#include "library/d_low_pass1.h"
#include "library/d_pi_plus.h"
#include "models/factories.h"

namespace torvane {

namespace {

constexpr double ArcMinute = 1.0 / (60.0 * RadToDeg);  // radians

struct MMotorFeedbackMemory {
  PreviousSample PreviousPF;
  double OutputInstant = 0.0;

  void Carry(Carried& carried) {
    PreviousPF.Carry(carried);
    carried.Keep(OutputInstant);
  }
};

/// Sampled PI velocity loop on a position sensor of coarse resolution and cyclic error, with two
/// low-pass filters for the velocity estimate.
///
///     vC -> PI -> iC, late by TCalc -> current loop -> iF
///     iF -> KT -> tM -> 1/(J s) -> vM -> 1/s -> pM
///     pM + pE -> counts -> pF -> change per sample -> vF, fed back as it is or filtered
///     vF -> LPF1 -> LPF2 -> vF-Filt
class MMotorFeedback final : public FusedModel<MMotorFeedback, MMotorFeedbackMemory> {
 public:
  explicit MMotorFeedback(const std::string& name);

  struct Loop {
    double vC = 0, vE = 0, vF = 0, vFFilt = 0, pF = 0, pE = 0, pC = 0, iC = 0, iF = 0, tM = 0;
    State vM, pM;
    LowPass2 currentLoop{600, Butterworth};
    ControllerClock clock;
  };
  Loop loop_;

  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) { return std::tie(command_, s.vM, s.pM, s.currentLoop, s.clock, generator_); }

 private:
  void Sample(Loop& s, double t);

  Constant res_{Bench(), "Res", "Counts/rev", Adjustable(4000, 100, 1e10),
                "Resolution of the position sensor"};
  Constant kvp_{Bench(), "KVP", "", Adjustable(0.72, 0, 1000),
                "Proportional gain of the velocity loop (Amps per rad/s)"};
  Constant kvi_{Bench(), "KVI", "", Adjustable(100, 0, 10000),
                "Integral gain of the velocity loop: below it the integral takes over (rad/s)"};
  Constant useFbFilt_{Bench(),
                      "Use FbFilt?",
                      {"No", "Yes"},
                      No,
                      "Yes: the loop is fed the filtered velocity vF-Filt"};
  Constant useLpf1_{
      Bench(), "Use LPF1?", {"No", "Yes"}, Yes, "Yes: the first feedback low-pass acts"};
  Constant lpf1_{Bench(), "LPF1", "Hz", Adjustable(800, 0, 10000),
                 "Bandwidth of the first feedback low-pass"};
  Constant useLpf2_{
      Bench(), "Use LPF2?", {"No", "Yes"}, No, "Yes: the second feedback low-pass acts"};
  Constant lpf2_{Bench(), "LPF2", "Hz", Adjustable(800, 0, 10000),
                 "Bandwidth of the second feedback low-pass"};
  DriveConstants drive_{Bench()};
  MotorConstants motor_{Bench(), "Nm/Amp", 10000, 10000};
  Constant posErr_{Bench(), "Pos Err", "arc-min", Adjustable(0, -100, 100),
                   "Amplitude of the position sensor's cyclic error"};
  Constant errHarm_{Bench(), "Err Harm", "", Adjustable(2, 0, 64),
                    "Cycles of the position sensor's error in a revolution"};

  Signals signals_{
      Bench(),
      {{loop_.vC, "vC", "RPM", Hidden(50, RadToRpm), "Command velocity"},
       {loop_.vM, "vM", "RPM", Shown(100, -200, RadToRpm), "Motor velocity"},
       {loop_.vE, "vE", "RPM", Hidden(50, RadToRpm),
        "Velocity error: what the controller works on"},
       {loop_.vF, "vF", "RPM", Shown(100, 200, RadToRpm),
        "Feedback velocity: what the controller is told"},
       {loop_.vFFilt, "vF-Filt", "RPM", Hidden(50, RadToRpm),
        "Feedback velocity behind the low-passes"},
       {loop_.pM, "pM", "Deg", Hidden(50, RadToDeg), "Motor position"},
       {loop_.pF, "pF", "Deg", Hidden(50, RadToDeg), "Feedback position, as sampled"},
       {loop_.pE, "pE", "Deg", Hidden(0.2, RadToDeg), "Cyclic error of the position sensor"},
       {loop_.pC, "pC", "Deg", Hidden(50, RadToDeg),
        "Sum of the command velocity, to compare pM with"},
       {loop_.iC, "iC", "Amps", Hidden(5), "Current command: what the controller asks for"},
       {loop_.iF, "iF", "Amps", Hidden(5), "Current feedback: the current that flows"},
       {loop_.tM, "tM", "Nm", Hidden(5), "Torque that turns the motor"}}};
  OnBench<LowPass2> currentLoop_{Bench(), loop_.currentLoop};
  ZelDController clock_{Bench(), drive_.tSample.Default(), &loop_.clock};

  // Well above the noise of the sensor's resolution.
  Analysers analysers_{Bench(), 13, {.Amplitude = 150}};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 7, .Amplitude = 100}};
  CommandSource command_{Bench(), generator_, analysers_};
  ZelDPi& controller_ = clock_.Add<ZelDPi>(&kvi_, &kvp_, CurrentLimit, WindUpFactor);
  ZelDLowPass1& filter1_ = clock_.Add<ZelDLowPass1>(lpf1_.Default(), 0.0);
  ZelDLowPass1& filter2_ = clock_.Add<ZelDLowPass1>(lpf2_.Default(), 0.0);
  ZelScope scope_{Bench(), "MainScope"};
};

MMotorFeedback::MMotorFeedback(const std::string& name) : FusedModel(name, 1e-5) {
  SetFiles("BWTX13-01.bmp", "BWTX13-01.txt");
  scope_.SetHorizontalScale(scope_.TimeChannel(), 0.02);
  analysers_.AddVelocitySetups();
  analysers_.SetLoop(&loop_.clock, [this] {
    const char* const feedback = useFbFilt_.Choice() == Yes ? "vF-Filt" : "vF";
    ModelLoop loop{"vE", feedback, false, drive_.tSample.Value()};
    loop.Linear = {{&res_, res_.Upper()}, {&posErr_, 0.0}};
    return loop;
  });
}

void MMotorFeedback::Sample(Loop& s, double t) {
  s.pC += s.vC * drive_.tSample.Value();
  s.pE = posErr_.Value() * ArcMinute * std::sin(errHarm_.Value() * s.pM);
  s.pF = FloorToStep(s.pM + s.pE, 1.0 / (res_.Value() * RadToRevs));
  s.vF = memory_.PreviousPF.Difference(s.pF) / drive_.tSample.Value();
  // Both filters run all the time, so that switching one in does not start it from rest.
  const double once = filter1_.Step(s.vF);
  s.vFFilt = useLpf1_.Choice() == Yes ? once : s.vF;
  const double twice = filter2_.Step(s.vFFilt);
  if (useLpf2_.Choice() == Yes) s.vFFilt = twice;
  const double feedback = useFbFilt_.Choice() == Yes ? s.vFFilt : s.vF;
  s.iC = controller_.Update(s.vC, feedback, 0.0);
  memory_.OutputInstant = drive_.OutputInstant(t);
  s.vE = controller_.Error();
}

void MMotorFeedback::HandOnChanges() {
  drive_.HandOnChanges(loop_.clock, loop_.currentLoop);
  HandOn(lpf1_, [&](double hz) { filter1_.SetFrequency(hz); });
  HandOn(lpf2_, [&](double hz) { filter2_.SetFrequency(hz); });
}

void MMotorFeedback::Equations(Loop& s, double t) {
  s.vC = command_.Value() * RpmToRad;
  if (s.clock.SampleDue()) Sample(s, t);
  s.iF = FollowCurrent(s.currentLoop, s.iC, t, memory_.OutputInstant);
  s.tM = s.iF * motor_.kt.Value();
  TurnInertia(s.tM, motor_.j.Value(), s.vM, s.pM);
}

}  // namespace

std::unique_ptr<ZelModel> MakeMotorFeedback(const std::string& name) {
  return std::make_unique<MMotorFeedback>(name);
}

}  // namespace torvane
