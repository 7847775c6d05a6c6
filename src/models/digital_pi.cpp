#include "instruments/scope/scope.h"
#include "kit/command_source.h"
#include "kit/fused_model.h"
#include "kit/velocity_loop.h"
#include "library/d_pi_plus.h"
#include "models/factories.h"

namespace torvane {

namespace {

struct MDigitalPIMemory {
  PreviousSample PreviousPF;
  double OutputInstant = 0.0;

  void Carry(Carried& carried) {
    PreviousPF.Carry(carried);
    carried.Keep(OutputInstant);
  }
};

/// Sampled PI velocity loop with encoder feedback and a choice of how velocity is estimated from
/// position.
///
///     vC -> PI -> iC, late by TCalc -> current loop -> iF
///     iF -> KT -> tM -> 1/(J s) -> vM -> 1/s -> pM
///     pM -> encoder -> pF -> change per sample -> vF, fed back, or vM itself as from a tachometer
class MDigitalPI final : public FusedModel<MDigitalPI, MDigitalPIMemory> {
 public:
  explicit MDigitalPI(const std::string& name);

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
  DriveConstants drive_{Bench()};
  MotorConstants motor_{Bench()};
  Constant feedback_{Bench(),
                     "Feedback",
                     {"Tach", "Encoder"},
                     Tach,
                     "Where velocity comes from: an ideal tachometer or differences of position"};
  Constant useRes_{Bench(),
                   "Use Res?",
                   {"No", "Yes"},
                   No,
                   "Yes: the encoder's position is cut down to whole counts"};
  Constant res_{Bench(), "Res", "Lines/rev", Adjustable(1000, 100, 1e10),
                "Lines of the encoder; it counts four a line"};
  Constant inverseTrapezoid_{
      Bench(), "a (Inv Trap)", "", Adjustable(0, 0, 1),
      "Lead of the inverse trapezoid that makes velocity of encoder positions"};

  Signals signals_{Bench(), VelocitySignals(loop_, 10)};
  OnBench<LowPass2> currentLoop_{Bench(), loop_.currentLoop};
  ZelDController clock_{Bench(), drive_.tSample.Default(), &loop_.clock};

  Analysers analysers_{Bench(), 14};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 25, .Amplitude = 20}};
  CommandSource command_{Bench(), generator_, analysers_};
  ZelDPi& controller_ = clock_.Add<ZelDPi>(&kvi_, &kvp_, CurrentLimit, WindUpFactor);
  ZelScope scope_{Bench(), "MainScope"};
};

MDigitalPI::MDigitalPI(const std::string& name) : FusedModel(name, 1e-5) {
  SetFiles("BWTX04-01.bmp", "BWTX04-01.txt");
  analysers_.AddVelocitySetups(&loop_.clock, &drive_.tSample, &useRes_);
}

void MDigitalPI::Sample(Loop& s, double t) {
  s.pF = EncoderPosition(s.pM, useRes_, res_);
  const double difference = memory_.PreviousPF.Difference(s.pF) / drive_.tSample.Value();
  if (feedback_.Choice() == Encoder) {
    s.vF = difference + inverseTrapezoid_.Value() * (difference - s.vF);
  } else {
    s.vF = s.vM;
  }
  s.iC = controller_.Update(s.vC, s.vF, 0.0);
  memory_.OutputInstant = drive_.OutputInstant(t);
  s.vE = controller_.Error();
}

void MDigitalPI::HandOnChanges() {
  drive_.HandOnChanges(loop_.clock, loop_.currentLoop);
}

void MDigitalPI::Equations(Loop& s, double t) {
  s.vC = command_.Value() * RpmToRad;
  if (s.clock.SampleDue()) Sample(s, t);
  RunMotor(s, t, memory_.OutputInstant, motor_);
}

}  // namespace

std::unique_ptr<ZelModel> MakeDigitalPI(const std::string& name) {
  return std::make_unique<MDigitalPI>(name);
}

}  // namespace torvane
