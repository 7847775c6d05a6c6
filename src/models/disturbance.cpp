#include "instruments/scope/scope.h"
#include "library/d_low_pass1.h"
#include "library/d_pi_plus.h"
#include "models/command_source.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/velocity_signals.h"

namespace torvane {

namespace {

// Kept once for the class on purpose: a new model or a reset goes on from what was seen last.
PreviousSample previousPF;
double outputInstant = 0.0;

/// Sampled PI velocity loop with a disturbance torque, and a feed-forward that decouples the loop
/// from the filtered disturbance.
class MDisturbance final : public ZelModel {
 public:
  explicit MDisturbance(const std::string& name);
  void Derivatives(double t) override;
  void DropClassMemory() override {
    previousPF = {};
    outputInstant = 0.0;
  }

  auto States() { return std::tuple_cat(std::tie(vM_, pM_), currentLoop_.States()); }
  auto Blocks() { return std::tie(currentLoop_, commandGenerator_, disturbanceGenerator_, clock_); }

 private:
  enum BodeType { Command, Disturbance };

  void Sample(double t);

  ZelSolver& solver_ = SetSolver(std::make_unique<FusedSolver<MDisturbance>>(Bench(), 1e-5, *this));

  Constant kvp_{Bench(), "KVP", "", 0.72, 0, 1000};
  Constant kvi_{Bench(), "KVI", "", 100, 0, 10000};
  Constant kdd_{Bench(), "KDD", "", 0, 0, 2};
  Constant ddLpf_{Bench(), "DD LPF", "Hz", 20, 2, 2000};
  Constant ktEst_{Bench(), "KT-Est", "Nm/Amp", 1, 0.1, 10};
  Constant bodeType_{Bench(), "Bode type", {"Cmd", "Dist"}, Disturbance};
  Constant cLoop_{Bench(), "CLoop", "Hz", 800, 100, 10000};
  Constant tSample_{Bench(), "TSample", "Sec", 0.00025, 0.0001, 100};
  Constant tCalc_{Bench(), "TCalc", "%", 65, 0, 95};
  Constant kt_{Bench(), "KT", "Nm/Amp", 1, 0.1, 10};
  Constant j_{Bench(), "J", "kg-m^2", 0.002, 1e-6, 1};
  Constant useRes_{Bench(), "Use Res?", {"No", "Yes"}};
  Constant res_{Bench(), "Res", "Lines/rev", 1000, 100, 1e10};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};
  Variable vC_{Bench(), "vC", "RPM", Hidden(10, RadToRpm)};
  StateVariable vM_{Bench(), "vM", "RPM", 0, Shown(20, 0, RadToRpm)};
  Variable vE_{Bench(), "vE", "RPM", Hidden(5, RadToRpm)};
  Variable vF_{Bench(), "vF", "RPM", Hidden(5, RadToRpm)};
  StateVariable pM_{Bench(), "pM", "Revs", 0, Hidden(0.01, RadToRevs)};
  Variable pF_{Bench(), "pF", "Revs", Hidden(0.01, RadToRevs)};
  Variable iC_{Bench(), "iC", "Amps", Hidden(2)};
  Variable iF_{Bench(), "iF", "Amps", Shown(2)};
  Variable tE_{Bench(), "tE", "Nm", Hidden(2)};
  Variable tD_{Bench(), "tD", "Nm", Shown(2)};
  Variable tM_{Bench(), "tM", "Nm", Hidden(2)};

  ZelLowPass2 currentLoop_{Bench(), 600, Butterworth};
  Analysers analysers_{Bench(), 13};
  ZelWave commandGenerator_{Bench(), "Command Source", {.Index = 8, .FreqHz = 10, .Amplitude = 10}};
  ZelWave disturbanceGenerator_{
      Bench(), "Disturbance Source", {.Index = 1, .FreqHz = 25, .Amplitude = 2}};
  CommandSource command_{Bench(), commandGenerator_, analysers_};
  CommandSource disturbance_{Bench(), disturbanceGenerator_, analysers_};
  ZelDController clock_{Bench(), tSample_.Default()};
  ZelDPi& controller_ = clock_.Add<ZelDPi>(&kvi_, &kvp_, CurrentLimit, WindUpFactor);
  ZelDLowPass1& decouplingFilter_ = clock_.Add<ZelDLowPass1>(ddLpf_.Default(), 0.0);
  ZelScope scope_{Bench(), "MainScope"};
};

MDisturbance::MDisturbance(const std::string& name) : ZelModel(name) {
  SetFiles("BWTX07-01.bmp", "BWTX07-01.txt");
  analysers_.AddSetup("Disturbance Source", "tD", "vM");
  analysers_.AddSetup("Command Source", "vC", "vM");
  analysers_.AddVelocitySetups();
  analysers_.AddSetup("Open+180", "vE", "vF", 180.0);
}

void MDisturbance::Sample(double t) {
  pF_.Value = EncoderPosition(pM_.Value, useRes_, res_);
  vF_.Value = previousPF.Difference(pF_.Value) / tSample_.Value();
  const double decoupling = -kdd_.Value() * decouplingFilter_.Step(tD_.Value) / ktEst_.Value();
  iC_.Value = controller_.Update(vC_.Value, vF_.Value, decoupling);
  outputInstant = OutputInstant(t, tCalc_, tSample_);
  vE_.Value = controller_.Error();
}

void MDisturbance::Derivatives(double t) {
  HandOn(tSample_, [&](double period) { clock_.SetPeriod(period); });
  HandOn(cLoop_, [&](double hz) { currentLoop_.SetFrequency(hz); });
  HandOn(ddLpf_, [&](double hz) { decouplingFilter_.SetFrequency(hz); });
  const bool exciteDisturbance = bodeType_.Choice() == Disturbance;
  vC_.Value = (exciteDisturbance ? commandGenerator_.Output() : command_.Value()) * RpmToRad;
  tD_.Value = exciteDisturbance ? disturbance_.Value() : disturbanceGenerator_.Output();
  if (clock_.SampleDue()) Sample(t);
  if (t >= outputInstant) currentLoop_.SetInput(iC_.Value);
  iF_.Value = currentLoop_.Output();
  tE_.Value = iF_.Value * kt_.Value();
  tM_.Value = tE_.Value + tD_.Value;
  TurnInertia(tM_.Value, j_.Value(), vM_, pM_);
}

}  // namespace

std::unique_ptr<ZelModel> MakeDisturbance(const std::string& name) {
  return std::make_unique<MDisturbance>(name);
}

}  // namespace torvane
