#include "instruments/scope/scope.h"
#include "kit/command_source.h"
#include "kit/fused_model.h"
#include "kit/velocity_loop.h"
#include "library/d_pid.h"
#include "models/factories.h"

namespace torvane {

namespace {

struct MDigitalPIDMemory {
  PreviousSample PreviousPF;
  double OutputInstant = 0.0;

  void Carry(Carried& carried) {
    PreviousPF.Carry(carried);
    carried.Keep(OutputInstant);
  }
};

/// Sampled PID velocity loop: the pattern of the other sampled velocity loops.
///
///     vC -> PID -> iC, late by TCalc -> current loop -> iF
///     iF -> KT -> tM -> 1/(J s) -> vM -> 1/s -> pM
///     pM -> encoder -> pF -> change per sample -> vF, fed back, or vM itself as from a tachometer
class MDigitalPID final : public FusedModel<MDigitalPID, MDigitalPIDMemory> {
 public:
  explicit MDigitalPID(const std::string& name);

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
  Constant kvd_{Bench(), "KVD", "", Adjustable(0, 0, 0.01),
                "Derivative gain of the velocity loop (sec)"};
  Constant kvfr_{Bench(), "KVFR", "", Adjustable(1, 0, 1),
                 "Share of the command that bypasses the command filter: 1 is all, 0 is none"};
  Constant fD_{Bench(), "fD", "Hz", Adjustable(2000, 1, 10000),
               "Bandwidth of the low-pass in the derivative"};
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

  Signals signals_{Bench(), VelocitySignals(loop_, 10, Shown(2, -6))};
  OnBench<LowPass2> currentLoop_{Bench(), loop_.currentLoop};
  ZelDController clock_{Bench(), 0.001, &loop_.clock};

  Analysers analysers_{Bench(), 14};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 25, .Amplitude = 20}};
  CommandSource command_{Bench(), generator_, analysers_};
  ZelDPid& controller_ =
      clock_.Add<ZelDPid>(&kvi_, &kvp_, &kvd_, &kvfr_, &fD_, CurrentLimit, WindUpFactor);
  ZelScope scope_{Bench(), "MainScope"};
};

MDigitalPID::MDigitalPID(const std::string& name) : FusedModel(name, 1e-5) {
  SetFiles("BWTX06-01.bmp", "BWTX06-01.txt");
  analysers_.AddVelocitySetups(&loop_.clock, &drive_.tSample, &useRes_);
  analysers_.Fft.SetOrder(11);
  analysers_.Fft.SetTSample(0.00025);
  analysers_.Fft.AutoRange();
}

void MDigitalPID::Sample(Loop& s, double t) {
  s.pF = EncoderPosition(s.pM, useRes_, res_);
  const double difference = memory_.PreviousPF.Difference(s.pF) / drive_.tSample.Value();
  s.vF = feedback_.Choice() == Encoder ? difference : s.vM;
  s.iC = controller_.Update(s.vC, s.vF, 0.0);
  memory_.OutputInstant = drive_.OutputInstant(t);
  s.vE = controller_.Error();
}

void MDigitalPID::HandOnChanges() {
  drive_.HandOnChanges(loop_.clock, loop_.currentLoop);
}

void MDigitalPID::Equations(Loop& s, double t) {
  s.vC = command_.Value() * RpmToRad;
  if (s.clock.SampleDue()) Sample(s, t);
  RunMotor(s, t, memory_.OutputInstant, motor_);
}

}  // namespace

std::unique_ptr<ZelModel> MakeDigitalPID(const std::string& name) {
  return std::make_unique<MDigitalPID>(name);
}

}  // namespace torvane
