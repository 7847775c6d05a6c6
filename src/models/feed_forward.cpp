#include "instruments/scope/scope.h"
#include "kit/command_source.h"
#include "kit/fused_model.h"
#include "kit/velocity_loop.h"
#include "library/d_notch.h"
#include "library/d_pi_plus.h"
#include "models/factories.h"

namespace torvane {

namespace {

struct MFeedForwardMemory {
  PreviousSample PreviousPF;
  PreviousSample PreviousVC;
  double OutputInstant = 0.0;

  void Carry(Carried& carried) {
    PreviousPF.Carry(carried);
    PreviousVC.Carry(carried);
    carried.Keep(OutputInstant);
  }
};

/// Sampled PI velocity loop with acceleration feed-forward, with or without the inverse of the
/// power converter in its path. The estimates scale the feed-forward only; the plant has its own
/// constants.
///
///     vC -> PI -> + -> iC, late by TCalc -> current loop -> iF
///     iF -> KT -> tM -> 1/(J s) -> vM -> pM
///     vC -> change per sample -> inverse of the power converter -> KVF J-Est/KT-Est -> +
///     pM -> change per sample -> vF, fed back, or vM itself as from a tachometer
class MFeedForward final : public FusedModel<MFeedForward, MFeedForwardMemory> {
 public:
  explicit MFeedForward(const std::string& name);

  using Loop = VelocityLoop;
  Loop loop_;

  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) { return std::tie(command_, s.vM, s.pM, s.currentLoop, s.clock, generator_); }

 private:
  void Sample(Loop& s, double t);

  Constant kvp_{Bench(), "KVP", "", Adjustable(0.72, 0, 1000),
                "Proportional gain of the velocity loop (Amps per rad/s)"};
  Constant kvi_{Bench(), "KVI", "", Adjustable(100, 0, 10000),
                "Integral gain of the velocity loop: below it the integral takes over (rad/s)"};
  Constant kvf_{Bench(), "KVF", "%", Adjustable(0, -100, 100),
                "Acceleration feed-forward: 100 feeds all of the estimated current"};
  DriveConstants drive_{Bench()};
  Constant ktEst_{Bench(), "KT-Est", "Nm/Amp", Adjustable(1, 0.1, 10),
                  "Estimate of KT that the feed-forward or decoupling works with"};
  Constant jEst_{Bench(), "J-Est", "kg-m^2", Adjustable(0.002, 1e-6, 1),
                 "Estimate of J that the feed-forward works with"};
  MotorConstants motor_{Bench()};
  Constant useInversePC_{Bench(),
                         "Use Inv. PC",
                         {"No", "Yes"},
                         No,
                         "Yes: the feed-forward passes the inverse of the current loop"};
  Constant cLoopEst_{Bench(), "CLoop-Est", "Hz", Adjustable(800, 100, 10000),
                     "Estimate of CLoop that the inverse filter works with"};
  Constant feedback_{Bench(),
                     "Feedback",
                     {"Tach", "Encoder"},
                     Tach,
                     "Where velocity comes from: an ideal tachometer or differences of position"};

  Signals signals_{Bench(), VelocitySignals(loop_, 10, Shown(1, -2))};
  OnBench<LowPass2> currentLoop_{Bench(), loop_.currentLoop};
  ZelDController clock_{Bench(), drive_.tSample.Default(), &loop_.clock};

  Analysers analysers_{Bench(), 13};
  ZelWave generator_{
      Bench(), "MainWaveGen", {.Index = 6, .FreqHz = 25, .Amplitude = 30, .DutyCycle = 36}};
  CommandSource command_{Bench(), generator_, analysers_};
  ZelDPi& controller_ = clock_.Add<ZelDPi>(&kvi_, &kvp_, CurrentLimit, WindUpFactor);
  ZelDNotch& inversePowerConverter_ =
      clock_.Add<ZelDNotch>(2000.0, Butterworth, 800.0, Butterworth, 0.0);
  ZelScope scope_{Bench(), "MainScope"};
};

MFeedForward::MFeedForward(const std::string& name) : FusedModel(name, 1e-5) {
  SetFiles("BWTX08-01.bmp", "BWTX08-01.txt");
  analysers_.AddVelocitySetups();
  analysers_.SetLoop(&loop_.clock, [this] {
    return ModelLoop{"vE", "vF", false, drive_.tSample.Value(), {{&kvf_, 0.0}}};
  });
}

void MFeedForward::Sample(Loop& s, double t) {
  s.pF = s.pM;
  const double difference = memory_.PreviousPF.Difference(s.pF) / drive_.tSample.Value();
  s.vF = feedback_.Choice() == Encoder ? difference : s.vM;
  const double acceleration = memory_.PreviousVC.Difference(s.vC) / drive_.tSample.Value();
  const double inverse = inversePowerConverter_.Step(acceleration);
  s.iC = controller_.Update(s.vC, s.vF, 0.0);
  const double fed = useInversePC_.Choice() == Yes ? inverse : acceleration;
  s.iC += 0.01 * kvf_.Value() * fed * jEst_.Value() / ktEst_.Value();
  memory_.OutputInstant = drive_.OutputInstant(t);
  s.vE = controller_.Error();
}

void MFeedForward::HandOnChanges() {
  drive_.HandOnChanges(loop_.clock, loop_.currentLoop);
  HandOn(cLoopEst_, [&](double hz) { inversePowerConverter_.SetZeroFrequency(hz); });
}

void MFeedForward::Equations(Loop& s, double t) {
  s.vC = command_.Value() * RpmToRad;
  if (s.clock.SampleDue()) Sample(s, t);
  RunMotor(s, t, memory_.OutputInstant, motor_);
}

}  // namespace

std::unique_ptr<ZelModel> MakeFeedForward(const std::string& name) {
  return std::make_unique<MFeedForward>(name);
}

}  // namespace torvane
