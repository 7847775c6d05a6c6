#include "instruments/scope/scope.h"
#include "kit/command_source.h"
#include "kit/fused_model.h"
#include "kit/loop_parts.h"
#include "library/low_pass1.h"
#include "library/low_pass2.h"
#include "library/notch.h"
#include "models/factories.h"

namespace torvane {

namespace {

/// Three continuous filters side by side on one source.
///
///     vC -> one pole -> vLP1,  vC -> two poles -> vLP2,  vC -> notch -> vNotch
class MAnalogFilters final : public FusedModel<MAnalogFilters> {
 public:
  explicit MAnalogFilters(const std::string& name);

  struct Loop {
    double vC = 0, vLP1 = 0, vLP2 = 0, vNotch = 0;
    LowPass1 onePole{45};
    LowPass2 twoPole{45, Butterworth};
    Notch notch{40, Butterworth};
  };
  Loop loop_;

  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) { return std::tie(source_, s.onePole, s.twoPole, s.notch, generator_); }

 private:
  Constant onePoleHz_{Bench(), "1-Pole Freq", "Hz", Adjustable(45, 0, 10000),
                      "Break frequency of the one-pole low-pass"};
  Constant twoPoleHz_{Bench(), "2-Pole Freq", "Hz", Adjustable(45, 0, 10000),
                      "Natural frequency of the two-pole low-pass"};
  Constant twoPoleZeta_{Bench(), "2-Pole Zeta", "", Adjustable(0.707, 0, 10),
                        "Damping of the two-pole low-pass: below 1 it overshoots"};
  Constant notchHz_{Bench(), "Notch Freq", "Hz", Adjustable(40, 0, 10000),
                    "Frequency that the notch takes out"};
  Constant notchZeta_{Bench(), "Notch Zeta", "", Adjustable(0.707, 0, 1),
                      "Damping of the notch's poles: a smaller one makes a narrower notch"};

  Signals signals_{Bench(),
                   {{loop_.vC, "vC", "volts", Shown(0.5, 0), "The source"},
                    {loop_.vLP1, "vLP1", "volts", Shown(0.5, 0), "Output of the one-pole low-pass"},
                    {loop_.vLP2, "vLP2", "volts", Shown(0.5, 0), "Output of the two-pole low-pass"},
                    {loop_.vNotch, "vNotch", "volts", Shown(0.5, 0), "Output of the notch"}}};
  OnBench<LowPass1> onePole_{Bench(), loop_.onePole};
  OnBench<LowPass2> twoPole_{Bench(), loop_.twoPole};
  OnBench<Notch> notch_{Bench(), loop_.notch};

  Analysers analysers_{
      Bench(), 13, {.To = 400, .TSample = 5e-5, .SettleTime = 0.2, .Amplitude = 1}};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 8, .Amplitude = 1}};
  CommandSource source_{Bench(), generator_, analysers_};
  ZelScope scope_{Bench(), "MainScope"};
};

MAnalogFilters::MAnalogFilters(const std::string& name) : FusedModel(name, 5e-5) {
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
  s.vC = source_.Value();
  s.onePole.SetInput(s.vC);
  s.twoPole.SetInput(s.vC);
  s.notch.SetInput(s.vC);
  s.vLP1 = s.onePole.Output();
  s.vLP2 = s.twoPole.Output();
  s.vNotch = s.notch.Output();
}

}  // namespace

std::unique_ptr<ZelModel> MakeAnalogFilters(const std::string& name) {
  return std::make_unique<MAnalogFilters>(name);
}

}  // namespace torvane
