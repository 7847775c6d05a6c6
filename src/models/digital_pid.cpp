#include "instruments/scope/scope.h"
#include "library/d_pid.h"
#include "models/command_source.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/velocity_loop.h"

namespace torvane {

namespace {

// Class memory.
PreviousSample previousPF;
double outputInstant = 0.0;

/// Sampled PID velocity loop: the pattern of the other sampled velocity loops.
///
///     vC -> PID -> iC, late by TCalc -> current loop -> iF
///     iF -> KT -> tM -> 1/(J s) -> vM -> 1/s -> pM
///     pM -> encoder -> pF -> change per sample -> vF, fed back, or vM itself as from a tachometer
class MDigitalPID final : public ZelModel {
 public:
  explicit MDigitalPID(const std::string& name);
  void Derivatives(double t) override { solver_.Derivatives(t); }
  void DropClassMemory() override {
    previousPF = {};
    outputInstant = 0.0;
  }

 private:
  friend class FusedSolver<MDigitalPID>;

  using Loop = VelocityLoop;

  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) { return std::tie(command_, s.vM, s.pM, s.currentLoop, s.clock, generator_); }
  void Sample(Loop& s, double t);

  FusedSolver<MDigitalPID>& solver_ =
      SetSolver(std::make_unique<FusedSolver<MDigitalPID>>(Bench(), 1e-5, *this));

  Constant kvp_{Bench(), "KVP", "", 0.72, 0, 1000};
  Constant kvi_{Bench(), "KVI", "", 100, 0, 10000};
  Constant kvd_{Bench(), "KVD", "", 0, 0, 0.01};
  Constant kvfr_{Bench(), "KVFR", "", 1, 0, 1};
  Constant fD_{Bench(), "fD", "Hz", 2000, 1, 10000};
  DriveConstants drive_{Bench()};
  MotorConstants motor_{Bench()};
  Constant feedback_{Bench(), "Feedback", {"Tach", "Encoder"}};
  Constant useRes_{Bench(), "Use Res?", {"No", "Yes"}};
  Constant res_{Bench(), "Res", "Lines/rev", 1000, 100, 1e10};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};
  Loop loop_{Bench(), 0.001, 10, Shown(2, -6)};

  Analysers analysers_{Bench(), 14};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 25, .Amplitude = 20}};
  CommandSource command_{Bench(), generator_, analysers_};
  ZelDPid& controller_ =
      loop_.clock.Add<ZelDPid>(&kvi_, &kvp_, &kvd_, &kvfr_, &fD_, CurrentLimit, WindUpFactor);
  ZelScope scope_{Bench(), "MainScope"};
};

MDigitalPID::MDigitalPID(const std::string& name) : ZelModel(name) {
  SetFiles("BWTX06-01.bmp", "BWTX06-01.txt");
  analysers_.AddVelocitySetups();
  analysers_.Fft.SetOrder(11);
  analysers_.Fft.SetTSample(0.00025);
  analysers_.Fft.AutoRange();
}

void MDigitalPID::Sample(Loop& s, double t) {
  s.pF.Value = EncoderPosition(s.pM.Value, useRes_, res_);
  const double difference = previousPF.Difference(s.pF.Value) / drive_.tSample.Value();
  s.vF.Value = feedback_.Choice() == Encoder ? difference : s.vM.Value;
  s.iC.Value = controller_.Update(s.vC.Value, s.vF.Value, 0.0);
  outputInstant = drive_.OutputInstant(t);
  s.vE.Value = controller_.Error();
}

void MDigitalPID::HandOnChanges() {
  drive_.HandOnChanges(loop_.clock, loop_.currentLoop);
}

void MDigitalPID::Equations(Loop& s, double t) {
  s.vC.Value = command_.Value() * RpmToRad;
  if (s.clock.SampleDue()) Sample(s, t);
  RunMotor(s, t, outputInstant, motor_);
}

}  // namespace

std::unique_ptr<ZelModel> MakeDigitalPID(const std::string& name) {
  return std::make_unique<MDigitalPID>(name);
}

}  // namespace torvane
