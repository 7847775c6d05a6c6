#include "instruments/scope/scope.h"
#include "library/d_controller.h"
#include "library/d_low_pass1.h"
#include "library/d_low_pass2.h"
#include "library/d_notch.h"
#include "models/command_source.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/loop_parts.h"

namespace torvane {

namespace {

/// Three sampled filters side by side on one source. Their coefficients follow their own constants
/// only: a changed sample period alone leaves them as they are.
class MDigitalFilters final : public ZelModel {
 public:
  explicit MDigitalFilters(const std::string& name);
  void Derivatives(double t) override;

  static auto States() { return std::tuple<>(); }
  auto Blocks() { return std::tie(generator_, clock_); }

 private:
  ZelSolver& solver_ =
      SetSolver(std::make_unique<FusedSolver<MDigitalFilters>>(Bench(), 5e-5, *this));

  Constant onePoleHz_{Bench(), "1-Pole Freq", "Hz", 45, 0, 10000};
  Constant twoPoleHz_{Bench(), "2-Pole Freq", "Hz", 45, 0, 10000};
  Constant twoPoleZeta_{Bench(), "2-Pole Zeta", "", 0.707, 0, 10};
  Constant notchHz_{Bench(), "Notch Freq", "Hz", 45, 0, 10000};
  Constant notchZeta_{Bench(), "Notch Zeta", "", 0.707, 0, 10};
  Constant tSample_{Bench(), "TSample", "", 0.001, 0.0001, 0.1};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};
  Variable vSample_{Bench(), "vSample", "volts", Shown(0.5, 0)};
  Variable vLP1_{Bench(), "vLP1", "volts", Shown(0.5, 0)};
  Variable vLP2_{Bench(), "vLP2", "volts", Shown(0.5, 0)};
  Variable vNotch_{Bench(), "vNotch", "volts", Shown(0.5, 0)};
  Variable vC_{Bench(), "vC", "volts", Hidden(0.5)};

  Analysers analysers_{
      Bench(), 13, {.To = 400, .TSample = 5e-5, .SettleTime = 0.2, .Amplitude = 1}};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 8, .Amplitude = 1}};
  CommandSource source_{Bench(), generator_, analysers_};
  ZelDController clock_{Bench(), tSample_.Default()};
  ZelDLowPass1& onePole_ = clock_.Add<ZelDLowPass1>(45.0, 0.0);
  ZelDLowPass2& twoPole_ = clock_.Add<ZelDLowPass2>(45.0, Butterworth, 0.0);
  ZelDNotch& notch_ = clock_.Add<ZelDNotch>(45.0, Butterworth, 0.0);
  ZelScope scope_{Bench(), "MainScope"};
};

MDigitalFilters::MDigitalFilters(const std::string& name) : ZelModel(name) {
  SetFiles("", "BWTX09-02.txt");
  scope_.SetHorizontalScale(scope_.TimeChannel(), 0.02);
  analysers_.AddSetup("1-Pole", "vSample", "vLP1");
  analysers_.AddSetup("2-Pole", "vSample", "vLP2");
  analysers_.AddSetup("Notch", "vSample", "vNotch");
}

void MDigitalFilters::Derivatives(double /*t*/) {
  HandOn(tSample_, [&](double period) { clock_.SetPeriod(period); });
  HandOn(onePoleHz_, [&](double hz) { onePole_.SetFrequency(hz); });
  HandOn(twoPoleHz_, [&](double hz) { twoPole_.SetFrequency(hz); });
  HandOn(twoPoleZeta_, [&](double zeta) { twoPole_.SetDamping(zeta); });
  HandOn(notchHz_, [&](double hz) { notch_.SetFrequency(hz); });
  HandOn(notchZeta_, [&](double zeta) { notch_.SetDamping(zeta); });
  vC_.Value = source_.Value();
  if (clock_.SampleDue()) {
    vSample_.Value = vC_.Value;
    vLP1_.Value = onePole_.Step(vSample_.Value);
    vLP2_.Value = twoPole_.Step(vSample_.Value);
    vNotch_.Value = notch_.Step(vSample_.Value);
  }
}

}  // namespace

std::unique_ptr<ZelModel> MakeDigitalFilters(const std::string& name) {
  return std::make_unique<MDigitalFilters>(name);
}

}  // namespace torvane
