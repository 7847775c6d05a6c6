#include "instruments/scope/scope.h"
#include "library/d_pi_plus.h"
#include "models/command_source.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/loop_parts.h"

namespace torvane {

namespace {

// Kept once for the class on purpose: a new model or a reset goes on from the last position seen.
PreviousSample previousPM;

/// The smallest sampled velocity loop: a PI+ controller around a current loop and an inertia, with
/// neither calculation delay nor encoder resolution.
class MPiPlus final : public ZelModel {
 public:
  explicit MPiPlus(const std::string& name);
  void Derivatives(double t) override;
  void DropClassMemory() override { previousPM = {}; }

  auto States() { return std::tuple_cat(std::tie(vM_, pM_), currentLoop_.States()); }
  auto Blocks() { return std::tie(currentLoop_, generator_, clock_); }

 private:
  ZelSolver& solver_ = SetSolver(std::make_unique<FusedSolver<MPiPlus>>(Bench(), 1e-5, *this));

  Constant kvp_{Bench(), "KVP", "", 0.72, 0, 100};
  Constant kvi_{Bench(), "KVI", "", 100, 0, 10000};
  Constant kvfr_{Bench(), "KVFR", "%", 65, -100, 200};
  Constant kt_{Bench(), "KT", "Nm/Amp", 1, 0.1, 10};
  Constant j_{Bench(), "J", "kg-m^2", 0.002, 0.0001, 0.01};
  Constant tSample_{Bench(), "TSample", "sec", 0.00025, 1e-5, 0.01};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};
  Variable vC_{Bench(), "vC", "RPM", Shown(10, 0, RadToRpm)};
  StateVariable vM_{Bench(), "vM", "RPM", 0, Hidden(10, RadToRpm)};
  Variable vE_{Bench(), "vE", "RPM", Hidden(10, RadToRpm)};
  Variable vF_{Bench(), "vF", "RPM", Shown(10, 0, RadToRpm)};
  StateVariable pM_{Bench(), "pM", "Revs", 0, Hidden(0.01, RadToRevs)};
  Variable pF_{Bench(), "pF", "Revs", Hidden(0.01, RadToRevs)};
  Variable iC_{Bench(), "iC", "Amps", Hidden(5)};
  Variable iF_{Bench(), "iF", "Amps", Hidden(5)};
  Variable tM_{Bench(), "tM", "Nm", Hidden(5)};

  ZelLowPass2 currentLoop_{Bench(), 800, Butterworth};
  Analysers analysers_{Bench(), 13};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 25, .Amplitude = 20}};
  CommandSource command_{Bench(), generator_, analysers_};
  ZelDController clock_{Bench(), tSample_.Default()};
  ZelDPiPlus& controller_ =
      clock_.Add<ZelDPiPlus>(&kvi_, &kvp_, &kvfr_, CurrentLimit, WindUpFactor);
  ZelScope scope_{Bench(), "MainScope"};
};

MPiPlus::MPiPlus(const std::string& name) : ZelModel(name) {
  SetFiles("BWTX02-01.bmp", "BWTX02-01.txt");
  analysers_.AddSetup("Closed", "vC", "vF");
}

void MPiPlus::Derivatives(double /*t*/) {
  vC_.Value = command_.Value() * RpmToRad;
  HandOn(tSample_, [&](double period) { clock_.SetPeriod(period); });
  if (clock_.SampleDue()) {
    vF_.Value = previousPM.Difference(pM_.Value) / tSample_.Value();
    iC_.Value = controller_.Update(vC_.Value, vF_.Value, 0.0);
    currentLoop_.SetInput(iC_.Value);
  }
  iF_.Value = currentLoop_.Output();
  tM_.Value = iF_.Value * kt_.Value();
  TurnInertia(tM_.Value, j_.Value(), vM_, pM_);
}

}  // namespace

std::unique_ptr<ZelModel> MakePiPlus(const std::string& name) {
  return std::make_unique<MPiPlus>(name);
}

}  // namespace torvane
