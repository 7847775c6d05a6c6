#include "instruments/scope/scope.h"
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

/// Sampled PI velocity loop with encoder feedback and a choice of how velocity is estimated from
/// position.
///
///     vC -> PI -> iC, late by TCalc -> current loop -> iF
///     iF -> KT -> tM -> 1/(J s) -> vM -> 1/s -> pM
///     pM -> encoder -> pF -> change per sample -> vF, fed back, or vM itself as from a tachometer
class MDigitalPI final : public ZelModel {
 public:
  explicit MDigitalPI(const std::string& name);
  void Derivatives(double t) override { solver_.Derivatives(t); }
  void DropClassMemory() override {
    previousPF = {};
    outputInstant = 0.0;
  }

 private:
  friend class FusedSolver<MDigitalPI>;

  using Loop = VelocityLoop;

  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) { return std::tie(command_, s.vM, s.pM, s.currentLoop, s.clock, generator_); }
  void Sample(Loop& s, double t);

  FusedSolver<MDigitalPI>& solver_ =
      SetSolver(std::make_unique<FusedSolver<MDigitalPI>>(Bench(), 1e-5, *this));

  Constant kvp_{Bench(), "KVP", "", 0.72, 0, 1000};
  Constant kvi_{Bench(), "KVI", "", 100, 0, 10000};
  DriveConstants drive_{Bench()};
  MotorConstants motor_{Bench()};
  Constant feedback_{Bench(), "Feedback", {"Tach", "Encoder"}};
  Constant useRes_{Bench(), "Use Res?", {"No", "Yes"}};
  Constant res_{Bench(), "Res", "Lines/rev", 1000, 100, 1e10};
  Constant inverseTrapezoid_{Bench(), "a (Inv Trap)", "", 0, 0, 1};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};
  Loop loop_{Bench(), drive_.tSample.Default(), 10};

  Analysers analysers_{Bench(), 14};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 25, .Amplitude = 20}};
  CommandSource command_{Bench(), generator_, analysers_};
  ZelDPi& controller_ = loop_.clock.Add<ZelDPi>(&kvi_, &kvp_, CurrentLimit, WindUpFactor);
  ZelScope scope_{Bench(), "MainScope"};
};

MDigitalPI::MDigitalPI(const std::string& name) : ZelModel(name) {
  SetFiles("BWTX04-01.bmp", "BWTX04-01.txt");
  analysers_.AddVelocitySetups();
}

void MDigitalPI::Sample(Loop& s, double t) {
  s.pF.Value = EncoderPosition(s.pM.Value, useRes_, res_);
  const double difference = previousPF.Difference(s.pF.Value) / drive_.tSample.Value();
  if (feedback_.Choice() == Encoder) {
    s.vF.Value = difference + inverseTrapezoid_.Value() * (difference - s.vF.Value);
  } else {
    s.vF.Value = s.vM.Value;
  }
  s.iC.Value = controller_.Update(s.vC.Value, s.vF.Value, 0.0);
  outputInstant = drive_.OutputInstant(t);
  s.vE.Value = controller_.Error();
}

void MDigitalPI::HandOnChanges() {
  drive_.HandOnChanges(loop_.clock, loop_.currentLoop);
}

void MDigitalPI::Equations(Loop& s, double t) {
  s.vC.Value = command_.Value() * RpmToRad;
  if (s.clock.SampleDue()) Sample(s, t);
  RunMotor(s, t, outputInstant, motor_);
}

}  // namespace

std::unique_ptr<ZelModel> MakeDigitalPI(const std::string& name) {
  return std::make_unique<MDigitalPI>(name);
}

}  // namespace torvane
