#include "instruments/scope/scope.h"
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

/// Sampled PI velocity loop with encoder feedback and a choice of how velocity is estimated from
/// position.
class MDigitalPI final : public ZelModel {
 public:
  explicit MDigitalPI(const std::string& name);
  void Derivatives(double t) override;
  void DropClassMemory() override {
    previousPF = {};
    outputInstant = 0.0;
  }

  auto States() {
    return std::tuple_cat(std::tie(signals_.vM, signals_.pM), currentLoop_.States());
  }
  auto Blocks() { return std::tie(currentLoop_, generator_, clock_); }

 private:
  void Sample(double t);

  ZelSolver& solver_ = SetSolver(std::make_unique<FusedSolver<MDigitalPI>>(Bench(), 1e-5, *this));

  Constant kvp_{Bench(), "KVP", "", 0.72, 0, 1000};
  Constant kvi_{Bench(), "KVI", "", 100, 0, 10000};
  Constant cLoop_{Bench(), "CLoop", "Hz", 800, 100, 10000};
  Constant tSample_{Bench(), "TSample", "Sec", 0.00025, 0.0001, 100};
  Constant tCalc_{Bench(), "TCalc", "%", 65, 0, 95};
  Constant kt_{Bench(), "KT", "Nm/Amp", 1, 0.1, 10};
  Constant j_{Bench(), "J", "kg-m^2", 0.002, 1e-6, 1};
  Constant feedback_{Bench(), "Feedback", {"Tach", "Encoder"}};
  Constant useRes_{Bench(), "Use Res?", {"No", "Yes"}};
  Constant res_{Bench(), "Res", "Lines/rev", 1000, 100, 1e10};
  Constant inverseTrapezoid_{Bench(), "a (Inv Trap)", "", 0, 0, 1};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};
  VelocitySignals signals_{Bench(), 10};

  ZelLowPass2 currentLoop_{Bench(), 600, Butterworth};
  Analysers analysers_{Bench(), 14};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 25, .Amplitude = 20}};
  CommandSource command_{Bench(), generator_, analysers_};
  ZelDController clock_{Bench(), tSample_.Default()};
  ZelDPi& controller_ = clock_.Add<ZelDPi>(&kvi_, &kvp_, CurrentLimit, WindUpFactor);
  ZelScope scope_{Bench(), "MainScope"};
};

MDigitalPI::MDigitalPI(const std::string& name) : ZelModel(name) {
  SetFiles("BWTX04-01.bmp", "BWTX04-01.txt");
  analysers_.AddVelocitySetups();
}

void MDigitalPI::Sample(double t) {
  auto& s = signals_;
  s.pF.Value = EncoderPosition(s.pM.Value, useRes_, res_);
  const double difference = previousPF.Difference(s.pF.Value) / tSample_.Value();
  if (feedback_.Choice() == Encoder) {
    s.vF.Value = difference + inverseTrapezoid_.Value() * (difference - s.vF.Value);
  } else {
    s.vF.Value = s.vM.Value;
  }
  s.iC.Value = controller_.Update(s.vC.Value, s.vF.Value, 0.0);
  outputInstant = OutputInstant(t, tCalc_, tSample_);
  s.vE.Value = controller_.Error();
}

void MDigitalPI::Derivatives(double t) {
  auto& s = signals_;
  HandOn(tSample_, [&](double period) { clock_.SetPeriod(period); });
  HandOn(cLoop_, [&](double hz) { currentLoop_.SetFrequency(hz); });
  s.vC.Value = command_.Value() * RpmToRad;
  if (clock_.SampleDue()) Sample(t);
  if (t >= outputInstant) currentLoop_.SetInput(s.iC.Value);
  s.iF.Value = currentLoop_.Output();
  s.tM.Value = s.iF.Value * kt_.Value();
  TurnInertia(s.tM.Value, j_.Value(), s.vM, s.pM);
}

}  // namespace

std::unique_ptr<ZelModel> MakeDigitalPI(const std::string& name) {
  return std::make_unique<MDigitalPI>(name);
}

}  // namespace torvane
