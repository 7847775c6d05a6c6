#include "instruments/scope/scope.h"
#include "kit/command_source.h"
#include "kit/fused_model.h"
#include "kit/loop_parts.h"
#include "library/d_controller.h"
#include "library/d_low_pass1.h"
#include "library/d_low_pass2.h"
#include "library/d_notch.h"
#include "models/factories.h"

namespace torvane {

namespace {

/// Three sampled filters side by side on one source. Their coefficients follow their own constants
/// only: a changed sample period alone leaves them as they are.
///
///     vC -> sample -> vSample -> one pole -> vLP1, two poles -> vLP2, notch -> vNotch
class MDigitalFilters final : public FusedModel<MDigitalFilters> {
 public:
  explicit MDigitalFilters(const std::string& name);

  struct Loop {
    double vSample = 0, vLP1 = 0, vLP2 = 0, vNotch = 0, vC = 0;
    ControllerClock clock;
  };
  Loop loop_;

  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) { return std::tie(source_, s.clock, generator_); }

 private:
  Constant onePoleHz_{Bench(), "1-Pole Freq", "Hz", Adjustable(45, 0, 10000),
                      "Break frequency of the one-pole low-pass"};
  Constant twoPoleHz_{Bench(), "2-Pole Freq", "Hz", Adjustable(45, 0, 10000),
                      "Natural frequency of the two-pole low-pass"};
  Constant twoPoleZeta_{Bench(), "2-Pole Zeta", "", Adjustable(0.707, 0, 10),
                        "Damping of the two-pole low-pass: below 1 it overshoots"};
  Constant notchHz_{Bench(), "Notch Freq", "Hz", Adjustable(45, 0, 10000),
                    "Frequency that the notch takes out"};
  Constant notchZeta_{Bench(), "Notch Zeta", "", Adjustable(0.707, 0, 10),
                      "Damping of the notch's poles: a smaller one makes a narrower notch"};
  Constant tSample_{Bench(), "TSample", "", Adjustable(0.001, 0.0001, 0.1),
                    "Time between two samples of the filters (sec)"};

  Signals signals_{Bench(),
                   {{loop_.vSample, "vSample", "volts", Shown(0.5, 0),
                     "The signal as sampled: it holds between two samples"},
                    {loop_.vLP1, "vLP1", "volts", Shown(0.5, 0), "Output of the one-pole low-pass"},
                    {loop_.vLP2, "vLP2", "volts", Shown(0.5, 0), "Output of the two-pole low-pass"},
                    {loop_.vNotch, "vNotch", "volts", Shown(0.5, 0), "Output of the notch"},
                    {loop_.vC, "vC", "volts", Hidden(0.5), "The source"}}};
  ZelDController clock_{Bench(), tSample_.Default(), &loop_.clock};

  Analysers analysers_{
      Bench(), 13, {.To = 400, .TSample = 5e-5, .SettleTime = 0.2, .Amplitude = 1}};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 8, .Amplitude = 1}};
  CommandSource source_{Bench(), generator_, analysers_};
  ZelDLowPass1& onePole_ = clock_.Add<ZelDLowPass1>(45.0, 0.0);
  ZelDLowPass2& twoPole_ = clock_.Add<ZelDLowPass2>(45.0, Butterworth, 0.0);
  ZelDNotch& notch_ = clock_.Add<ZelDNotch>(45.0, Butterworth, 0.0);
  ZelScope scope_{Bench(), "MainScope"};
};

MDigitalFilters::MDigitalFilters(const std::string& name) : FusedModel(name, 5e-5) {
  SetFiles("", "BWTX09-02.txt");
  scope_.SetHorizontalScale(scope_.TimeChannel(), 0.02);
  analysers_.AddFilterSetups("vSample", &loop_.clock, &tSample_);
}

void MDigitalFilters::HandOnChanges() {
  HandOn(tSample_, [&](double period) { loop_.clock.SetPeriod(period); });
  HandOn(onePoleHz_, [&](double hz) { onePole_.SetFrequency(hz); });
  HandOn(twoPoleHz_, [&](double hz) { twoPole_.SetFrequency(hz); });
  HandOn(twoPoleZeta_, [&](double zeta) { twoPole_.SetDamping(zeta); });
  HandOn(notchHz_, [&](double hz) { notch_.SetFrequency(hz); });
  HandOn(notchZeta_, [&](double zeta) { notch_.SetDamping(zeta); });
}

void MDigitalFilters::Equations(Loop& s, double /*t*/) {
  s.vC = source_.Value();
  if (s.clock.SampleDue()) {
    s.vSample = s.vC;
    s.vLP1 = onePole_.Step(s.vSample);
    s.vLP2 = twoPole_.Step(s.vSample);
    s.vNotch = notch_.Step(s.vSample);
  }
}

}  // namespace

std::unique_ptr<ZelModel> MakeDigitalFilters(const std::string& name) {
  return std::make_unique<MDigitalFilters>(name);
}

}  // namespace torvane
