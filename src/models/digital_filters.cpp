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
///
///     vC -> sample -> vSample -> one pole -> vLP1, two poles -> vLP2, notch -> vNotch
class MDigitalFilters final : public ZelModel {
 public:
  explicit MDigitalFilters(const std::string& name);
  void Derivatives(double t) override { solver_.Derivatives(t); }

 private:
  friend class FusedSolver<MDigitalFilters>;

  struct Loop;
  void HandOnChanges();
  void Equations(Loop& s, double t);
  auto Parts(Loop& s) { return std::tie(source_, s.clock, generator_); }

  FusedSolver<MDigitalFilters>& solver_ =
      SetSolver(std::make_unique<FusedSolver<MDigitalFilters>>(Bench(), 5e-5, *this));

  Constant onePoleHz_{Bench(), "1-Pole Freq", "Hz", 45, 0, 10000};
  Constant twoPoleHz_{Bench(), "2-Pole Freq", "Hz", 45, 0, 10000};
  Constant twoPoleZeta_{Bench(), "2-Pole Zeta", "", 0.707, 0, 10};
  Constant notchHz_{Bench(), "Notch Freq", "Hz", 45, 0, 10000};
  Constant notchZeta_{Bench(), "Notch Zeta", "", 0.707, 0, 10};
  Constant tSample_{Bench(), "TSample", "", 0.001, 0.0001, 0.1};

  TimeVariable time_{Bench(), "Time", "sec", TimeAxis};

  struct Loop : OnBench {
    Loop(ZelBenchTop& bench, double period) : OnBench(bench), clock(bench, period) {}

    Variable vSample{Bench(), "vSample", "volts", Shown(0.5, 0)};
    Variable vLP1{Bench(), "vLP1", "volts", Shown(0.5, 0)};
    Variable vLP2{Bench(), "vLP2", "volts", Shown(0.5, 0)};
    Variable vNotch{Bench(), "vNotch", "volts", Shown(0.5, 0)};
    Variable vC{Bench(), "vC", "volts", Hidden(0.5)};
    ZelDController clock;
  };
  Loop loop_{Bench(), tSample_.Default()};

  Analysers analysers_{
      Bench(), 13, {.To = 400, .TSample = 5e-5, .SettleTime = 0.2, .Amplitude = 1}};
  ZelWave generator_{Bench(), "MainWaveGen", {.Index = 1, .FreqHz = 8, .Amplitude = 1}};
  CommandSource source_{Bench(), generator_, analysers_};
  ZelDLowPass1& onePole_ = loop_.clock.Add<ZelDLowPass1>(45.0, 0.0);
  ZelDLowPass2& twoPole_ = loop_.clock.Add<ZelDLowPass2>(45.0, Butterworth, 0.0);
  ZelDNotch& notch_ = loop_.clock.Add<ZelDNotch>(45.0, Butterworth, 0.0);
  ZelScope scope_{Bench(), "MainScope"};
};

MDigitalFilters::MDigitalFilters(const std::string& name) : ZelModel(name) {
  SetFiles("", "BWTX09-02.txt");
  scope_.SetHorizontalScale(scope_.TimeChannel(), 0.02);
  analysers_.AddFilterSetups("vSample");
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
  s.vC.Value = source_.Value();
  if (s.clock.SampleDue()) {
    s.vSample.Value = s.vC.Value;
    s.vLP1.Value = onePole_.Step(s.vSample.Value);
    s.vLP2.Value = twoPole_.Step(s.vSample.Value);
    s.vNotch.Value = notch_.Step(s.vSample.Value);
  }
}

}  // namespace

std::unique_ptr<ZelModel> MakeDigitalFilters(const std::string& name) {
  return std::make_unique<MDigitalFilters>(name);
}

}  // namespace torvane
