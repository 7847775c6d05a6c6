#include "instruments/scope/scope.h"
#include "library/d_pi_plus.h"
#include "models/command_source.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/loop_parts.h"

namespace torvane {

namespace {

// Class memory.
PreviousSample previousPM;

/// The smallest sampled velocity loop: a PI+ controller around a current loop and an inertia, with
/// neither calculation delay nor encoder resolution.
///
///     vC -> PI+ -> iC -> current loop -> iF -> KT -> tM -> 1/(J s) -> vM -> 1/s -> pM
///     pM -> change per sample -> vF, fed back
class MPiPlus final : public ZelModel {
 public:
  explicit MPiPlus(const std::string& name);
  void Derivatives(double t) override { solver_.Derivatives(t); }
  void DropClassMemory() override { previousPM = {}; }

 private:
  friend class FusedSolver<MPiPlus>;

  struct Loop;
  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) { return std::tie(command_, s.vM, s.pM, s.currentLoop, s.clock, generator_); }

  FusedSolver<MPiPlus>& solver_ =
      SetSolver(std::make_unique<FusedSolver<MPiPlus>>(Bench(), 1e-5, *this));

  Constant kvp_{Bench(), "KVP", "", 0.72, 0, 100};
  Constant kvi_{Bench(), "KVI", "", 100, 0, 10000};
  Constant kvfr_{Bench(), "KVFR", "%", 65, -100, 200};
  Constant kt_{Bench(), "KT", "Nm/Amp", 1, 0.1, 10};
  Constant j_{Bench(), "J", "kg-m^2", 0.002, 0.0001, 0.01};
  Constant tSample_{Bench(), "TSample", "sec", 0.00025, 1e-5, 0.01};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};

  struct Loop : OnBench {
    Loop(ZelBenchTop& bench, double period) : OnBench(bench), clock(bench, period) {}

    Variable vC{Bench(), "vC", "RPM", Shown(10, 0, RadToRpm)};
    StateVariable vM{Bench(), "vM", "RPM", 0, Hidden(10, RadToRpm)};
    Variable vE{Bench(), "vE", "RPM", Hidden(10, RadToRpm)};
    Variable vF{Bench(), "vF", "RPM", Shown(10, 0, RadToRpm)};
    StateVariable pM{Bench(), "pM", "Revs", 0, Hidden(0.01, RadToRevs)};
    Variable pF{Bench(), "pF", "Revs", Hidden(0.01, RadToRevs)};
    Variable iC{Bench(), "iC", "Amps", Hidden(5)};
    Variable iF{Bench(), "iF", "Amps", Hidden(5)};
    Variable tM{Bench(), "tM", "Nm", Hidden(5)};
    ZelLowPass2 currentLoop{Bench(), 800, Butterworth};
    ZelDController clock;
  };
  Loop loop_{Bench(), tSample_.Default()};

  Analysers analysers_{Bench(), 13};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 25, .Amplitude = 20}};
  CommandSource command_{Bench(), generator_, analysers_};
  ZelDPiPlus& controller_ =
      loop_.clock.Add<ZelDPiPlus>(&kvi_, &kvp_, &kvfr_, CurrentLimit, WindUpFactor);
  ZelScope scope_{Bench(), "MainScope"};
};

MPiPlus::MPiPlus(const std::string& name) : ZelModel(name) {
  SetFiles("BWTX02-01.bmp", "BWTX02-01.txt");
  analysers_.AddSetup("Closed", "vC", "vF");
}

void MPiPlus::HandOnChanges() {
  HandOn(tSample_, [&](double period) { loop_.clock.SetPeriod(period); });
}

void MPiPlus::Equations(Loop& s, double /*t*/) {
  s.vC.Value = command_.Value() * RpmToRad;
  if (s.clock.SampleDue()) {
    s.vF.Value = previousPM.Difference(s.pM.Value) / tSample_.Value();
    s.iC.Value = controller_.Update(s.vC.Value, s.vF.Value, 0.0);
    s.currentLoop.SetInput(s.iC.Value);
  }
  s.iF.Value = s.currentLoop.Output();
  s.tM.Value = s.iF.Value * kt_.Value();
  TurnInertia(s.tM.Value, j_.Value(), s.vM, s.pM);
}

}  // namespace

std::unique_ptr<ZelModel> MakePiPlus(const std::string& name) {
  return std::make_unique<MPiPlus>(name);
}

}  // namespace torvane
