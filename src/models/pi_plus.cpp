#include "instruments/scope/scope.h"
#include "kit/command_source.h"
#include "kit/fused_model.h"
#include "kit/loop_parts.h"
#include "library/d_pi_plus.h"
#include "models/factories.h"

namespace torvane {

namespace {

struct MPiPlusMemory {
  PreviousSample PreviousPM;

  void Carry(Carried& carried) { PreviousPM.Carry(carried); }
};

/// The smallest sampled velocity loop: a PI+ controller around a current loop and an inertia, with
/// neither calculation delay nor encoder resolution.
///
///     vC -> PI+ -> iC -> current loop -> iF -> KT -> tM -> 1/(J s) -> vM -> 1/s -> pM
///     pM -> change per sample -> vF, fed back
class MPiPlus final : public FusedModel<MPiPlus, MPiPlusMemory> {
 public:
  explicit MPiPlus(const std::string& name);

  struct Loop {
    double vC = 0, vE = 0, vF = 0, pF = 0, iC = 0, iF = 0, tM = 0;
    State vM, pM;
    LowPass2 currentLoop{800, Butterworth};
    ControllerClock clock;
  };
  Loop loop_;

  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) { return std::tie(command_, s.vM, s.pM, s.currentLoop, s.clock, generator_); }

 private:
  Constant kvp_{Bench(), "KVP", "", Adjustable(0.72, 0, 100),
                "Proportional gain of the velocity loop (Amps per rad/s)"};
  Constant kvi_{Bench(), "KVI", "", Adjustable(100, 0, 10000),
                "Integral gain of the velocity loop: below it the integral takes over (rad/s)"};
  Constant kvfr_{Bench(), "KVFR", "%", Adjustable(65, -100, 200),
                 "Share of the command that bypasses the command filter: 100 is plain PI"};
  Constant kt_{Bench(), "KT", "Nm/Amp", Adjustable(1, 0.1, 10), "Torque constant of the motor"};
  Constant j_{Bench(), "J", "kg-m^2", Adjustable(0.002, 0.0001, 0.01), "Inertia of motor and load"};
  Constant tSample_{Bench(), "TSample", "sec", Adjustable(0.00025, 1e-5, 0.01),
                    "Time between two samples"};

  Signals signals_{
      Bench(),
      {{loop_.vC, "vC", "RPM", Shown(10, 0, RadToRpm), "Command velocity"},
       {loop_.vM, "vM", "RPM", Hidden(10, RadToRpm), "Motor velocity"},
       {loop_.vE, "vE", "RPM", Hidden(10, RadToRpm), "Not used in this loop"},
       {loop_.vF, "vF", "RPM", Shown(10, 0, RadToRpm),
        "Feedback velocity: what the controller is told"},
       {loop_.pM, "pM", "Revs", Hidden(0.01, RadToRevs), "Motor position"},
       {loop_.pF, "pF", "Revs", Hidden(0.01, RadToRevs), "Not used in this loop"},
       {loop_.iC, "iC", "Amps", Hidden(5), "Current command: what the controller asks for"},
       {loop_.iF, "iF", "Amps", Hidden(5), "Current feedback: the current that flows"},
       {loop_.tM, "tM", "Nm", Hidden(5), "Torque that turns the motor"}}};
  OnBench<LowPass2> currentLoop_{Bench(), loop_.currentLoop};
  ZelDController clock_{Bench(), tSample_.Default(), &loop_.clock};

  Analysers analysers_{Bench(), 13};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 25, .Amplitude = 20}};
  CommandSource command_{Bench(), generator_, analysers_};
  ZelDPiPlus& controller_ =
      clock_.Add<ZelDPiPlus>(&kvi_, &kvp_, &kvfr_, CurrentLimit, WindUpFactor);
  ZelScope scope_{Bench(), "MainScope"};
};

MPiPlus::MPiPlus(const std::string& name) : FusedModel(name, 1e-5) {
  SetFiles("BWTX02-01.bmp", "BWTX02-01.txt");
  analysers_.AddSetup("Closed", "vC", "vF");
  analysers_.SetLoop(&loop_.clock, [this] {
    return ModelLoop{"vC", "vF", true, tSample_.Value(), {{&kvfr_, 100.0}}};
  });
}

void MPiPlus::HandOnChanges() {
  HandOn(tSample_, [&](double period) { loop_.clock.SetPeriod(period); });
}

void MPiPlus::Equations(Loop& s, double /*t*/) {
  s.vC = command_.Value() * RpmToRad;
  if (s.clock.SampleDue()) [[unlikely]] {
    s.vF = memory_.PreviousPM.Difference(s.pM) / tSample_.Value();
    s.iC = controller_.Update(s.vC, s.vF, 0.0);
    s.currentLoop.SetInput(s.iC);
  }
  s.iF = s.currentLoop.Output();
  s.tM = s.iF * kt_.Value();
  TurnInertia(s.tM, j_.Value(), s.vM, s.pM);
}

}  // namespace

std::unique_ptr<ZelModel> MakePiPlus(const std::string& name) {
  return std::make_unique<MPiPlus>(name);
}

}  // namespace torvane
