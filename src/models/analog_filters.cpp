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
///
///     vC -> one pole -> vLP1,  vC -> two poles -> vLP2,  vC -> notch -> vNotch
class MAnalogFilters final : public ZelModel {
 public:
  explicit MAnalogFilters(const std::string& name);
  void Derivatives(double t) override { solver_.Derivatives(t); }

 private:
  friend class FusedSolver<MAnalogFilters>;

  struct Loop;
  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) { return std::tie(source_, s.onePole, s.twoPole, s.notch, generator_); }

  FusedSolver<MAnalogFilters>& solver_ =
      SetSolver(std::make_unique<FusedSolver<MAnalogFilters>>(Bench(), 5e-5, *this));

  Constant onePoleHz_{Bench(), "1-Pole Freq", "Hz", 45, 0, 10000};
  Constant twoPoleHz_{Bench(), "2-Pole Freq", "Hz", 45, 0, 10000};
  Constant twoPoleZeta_{Bench(), "2-Pole Zeta", "", 0.707, 0, 10};
  Constant notchHz_{Bench(), "Notch Freq", "Hz", 40, 0, 10000};
  Constant notchZeta_{Bench(), "Notch Zeta", "", 0.707, 0, 1};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};

  struct Loop : OnBench {
    using OnBench::OnBench;

    Variable vC{Bench(), "vC", "volts", Shown(0.5, 0)};
    Variable vLP1{Bench(), "vLP1", "volts", Shown(0.5, 0)};
    Variable vLP2{Bench(), "vLP2", "volts", Shown(0.5, 0)};
    Variable vNotch{Bench(), "vNotch", "volts", Shown(0.5, 0)};
    ZelLowPass1 onePole{Bench(), 45};
    ZelLowPass2 twoPole{Bench(), 45, Butterworth};
    ZelNotch notch{Bench(), 40, Butterworth};
  };
  Loop loop_{Bench()};

  Analysers analysers_{
      Bench(), 13, {.To = 400, .TSample = 5e-5, .SettleTime = 0.2, .Amplitude = 1}};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 8, .Amplitude = 1}};
  CommandSource source_{Bench(), generator_, analysers_};
  ZelScope scope_{Bench(), "MainScope"};
};

MAnalogFilters::MAnalogFilters(const std::string& name) : ZelModel(name) {
  SetFiles("", "BWTX09-01.txt");
  scope_.SetHorizontalScale(scope_.TimeChannel(), 0.02);
  analysers_.AddFilterSetups("vC");
}

void MAnalogFilters::HandOnChanges() {
  HandOn(onePoleHz_, [&](double hz) { loop_.onePole.SetFrequency(hz); });
  HandOn(twoPoleHz_, [&](double hz) { loop_.twoPole.SetFrequency(hz); });
  HandOn(twoPoleZeta_, [&](double zeta) { loop_.twoPole.SetDamping(zeta); });
  HandOn(notchHz_, [&](double hz) { loop_.notch.SetFrequency(hz); });
  HandOn(notchZeta_, [&](double zeta) { loop_.notch.SetDamping(zeta); });
}

void MAnalogFilters::Equations(Loop& s, double /*t*/) {
  s.vC.Value = source_.Value();
  s.onePole.SetInput(s.vC.Value);
  s.twoPole.SetInput(s.vC.Value);
  s.notch.SetInput(s.vC.Value);
  s.vLP1.Value = s.onePole.Output();
  s.vLP2.Value = s.twoPole.Output();
  s.vNotch.Value = s.notch.Output();
}

}  // namespace

std::unique_ptr<ZelModel> MakeAnalogFilters(const std::string& name) {
  return std::make_unique<MAnalogFilters>(name);
}

}  // namespace torvane
