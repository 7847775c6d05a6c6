#include "instruments/scope/scope.h"
#include "library/low_pass1.h"
#include "library/low_pass2.h"
#include "library/notch.h"
#include "models/command_source.h"
#include "models/factories.h"
#include "models/fused_solver.h"
#include "models/loop_parts.h"

namespace torvane {

namespace {

/// Three continuous filters side by side on one source.
class MAnalogFilters final : public ZelModel {
 public:
  explicit MAnalogFilters(const std::string& name);
  void Derivatives(double t) override;

  auto States() { return std::tuple_cat(onePole_.States(), twoPole_.States(), notch_.States()); }
  auto Blocks() { return std::tie(onePole_, twoPole_, notch_, generator_); }

 private:
  ZelSolver& solver_ =
      SetSolver(std::make_unique<FusedSolver<MAnalogFilters>>(Bench(), 5e-5, *this));

  Constant onePoleHz_{Bench(), "1-Pole Freq", "Hz", 45, 0, 10000};
  Constant twoPoleHz_{Bench(), "2-Pole Freq", "Hz", 45, 0, 10000};
  Constant twoPoleZeta_{Bench(), "2-Pole Zeta", "", 0.707, 0, 10};
  Constant notchHz_{Bench(), "Notch Freq", "Hz", 40, 0, 10000};
  Constant notchZeta_{Bench(), "Notch Zeta", "", 0.707, 0, 1};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};
  Variable vC_{Bench(), "vC", "volts", Shown(0.5, 0)};
  Variable vLP1_{Bench(), "vLP1", "volts", Shown(0.5, 0)};
  Variable vLP2_{Bench(), "vLP2", "volts", Shown(0.5, 0)};
  Variable vNotch_{Bench(), "vNotch", "volts", Shown(0.5, 0)};

  ZelLowPass1 onePole_{Bench(), 45};
  ZelLowPass2 twoPole_{Bench(), 45, Butterworth};
  ZelNotch notch_{Bench(), 40, Butterworth};
  Analysers analysers_{
      Bench(), 13, {.To = 400, .TSample = 5e-5, .SettleTime = 0.2, .Amplitude = 1}};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 8, .Amplitude = 1}};
  CommandSource source_{Bench(), generator_, analysers_};
  ZelScope scope_{Bench(), "MainScope"};
};

MAnalogFilters::MAnalogFilters(const std::string& name) : ZelModel(name) {
  SetFiles("", "BWTX09-01.txt");
  scope_.SetHorizontalScale(scope_.TimeChannel(), 0.02);
  analysers_.AddSetup("1-Pole", "vC", "vLP1");
  analysers_.AddSetup("2-Pole", "vC", "vLP2");
  analysers_.AddSetup("Notch", "vC", "vNotch");
}

void MAnalogFilters::Derivatives(double /*t*/) {
  HandOn(onePoleHz_, [&](double hz) { onePole_.SetFrequency(hz); });
  HandOn(twoPoleHz_, [&](double hz) { twoPole_.SetFrequency(hz); });
  HandOn(twoPoleZeta_, [&](double zeta) { twoPole_.SetDamping(zeta); });
  HandOn(notchHz_, [&](double hz) { notch_.SetFrequency(hz); });
  HandOn(notchZeta_, [&](double zeta) { notch_.SetDamping(zeta); });
  vC_.Value = source_.Value();
  onePole_.SetInput(vC_.Value);
  twoPole_.SetInput(vC_.Value);
  notch_.SetInput(vC_.Value);
  vLP1_.Value = onePole_.Output();
  vLP2_.Value = twoPole_.Output();
  vNotch_.Value = notch_.Output();
}

}  // namespace

std::unique_ptr<ZelModel> MakeAnalogFilters(const std::string& name) {
  return std::make_unique<MAnalogFilters>(name);
}

}  // namespace torvane
