#pragma once

#include <cmath>
#include <initializer_list>
#include <limits>
#include <string>

#include "core/constant.h"
#include "core/model.h"
#include "instruments/fft/fft_analyser.h"
#include "instruments/generator/wave.h"
#include "instruments/meter/meter.h"
#include "instruments/scope/scope.h"
#include "instruments/sweep/swept_sine_analyser.h"

namespace torvane::test {

/// Looks for settings that are outside what their setters allow, whoever set them.
class LimitCheck {
 public:
  /// What was found, a line each; empty when all is well.
  static std::string Run(const ZelModel& model) {
    LimitCheck check;
    for (const Constant* c : model.Bench().Constants()) {
      check.Expect(c->Value() >= c->Lower() && c->Value() <= c->Upper(), c->Name());
    }
    check.Each<ZelScope>(model, InstrumentKind::Scope);
    check.Each<ZelXfer>(model, InstrumentKind::FftAnalyser);
    check.Each<ZelSweptDSA>(model, InstrumentKind::SweptSine);
    check.Each<ZelMeter>(model, InstrumentKind::Meter);
    check.Each<ZelWave>(model, InstrumentKind::WaveGenerator);
    const auto meters = model.Bench().Instruments(InstrumentKind::Meter).size();
    check.Expect(meters <= ZelMeter::MaxMeters, "number of meters");
    return check.found_;
  }

 private:
  using Numbers = std::initializer_list<double>;

  void Expect(bool good, const std::string& what) {
    if (!good) found_ += what + "\n";
  }
  /// Each of the numbers is finite and at least, or above, 0; a report gives its place in the list.
  void Finite(const std::string& what, Numbers numbers) { Bounded(what, numbers, -HUGE_VAL); }
  void Positive(const std::string& what, Numbers numbers) { Bounded(what, numbers, 0.0); }
  void NotNegative(const std::string& what, Numbers numbers) {
    Bounded(what, numbers, -std::numeric_limits<double>::denorm_min());
  }
  void Bounded(const std::string& what, Numbers numbers, double above) {
    for (const double& x : numbers) {
      Expect(std::isfinite(x) && x > above, what + " " + std::to_string(&x - numbers.begin()));
    }
  }

  template <class Kind>
  void Each(const ZelModel& model, InstrumentKind kind) {
    for (const Instrument* instrument : model.Bench().Instruments(kind)) {
      Look(dynamic_cast<const Kind&>(*instrument));
      const WindowPlacement& p = instrument->Placement;
      Expect(p.Height >= 0 && p.Width >= 0 && p.Height < 32768 && p.Width < 32768 &&
                 std::abs(p.Left) < 32768 && std::abs(p.Top) < 32768,
             "placement");
    }
  }

  void Look(const ZelScope& scope) {
    int displayed = 0;
    int horizontal = scope.TimeChannel().IsHorizontal() ? 1 : 0;
    Axes(scope.TimeChannel());
    for (const auto& channel : scope.Channels()) {
      Axes(*channel);
      displayed += channel->Displayed() ? 1 : 0;
      horizontal += channel->IsHorizontal() ? 1 : 0;
    }
    Expect(displayed <= TraceColourCount, "displayed channels");
    Expect(horizontal == 1, "horizontal channels");
    const ZelTrigger& trigger = scope.Trigger();
    Positive("sample interval", {scope.SampleInterval()});
    Finite("trigger", {trigger.Level(), trigger.Position(), trigger.InitialDelayTime(),
                       trigger.DelayAfterTime()});
  }

  void Axes(const ZelChannel& channel) {
    for (const AxisScale& axis : {channel.Vertical(), channel.Horizontal()}) {
      Positive("scale of " + channel.Name(), {std::abs(axis.Scale)});
      Finite("offset of " + channel.Name(), {axis.Offset});
    }
  }

  void Plot(const FrequencyAnalyser& a) {
    Positive("axes",
             {a.FreqMin(), a.FreqMax() - 1.009 * a.FreqMin(), a.GainScale(), a.PhaseScale()});
    Finite("axes' offsets", {a.GainOffset(), a.PhaseOffset()});
  }

  void Look(const ZelXfer& xfer) {
    Plot(xfer);
    Expect(xfer.Order() >= ZelXfer::MinOrder && xfer.Order() <= xfer.MaxOrder(), "Order");
    Positive("Xfer", {xfer.TSample(), xfer.Length() * xfer.TSample() - xfer.TEndDelay()});
    NotNegative("Xfer", {xfer.TStartDelay(), xfer.TEndDelay(), xfer.Amplitude()});
    Finite("Xfer", {xfer.Offset()});
  }

  void Look(const ZelSweptDSA& s) {
    Plot(s);
    Positive("SweptDSA", {s.TSample(), s.StartFreq(), s.EndFreq(), 1.0 * s.StepsPerDecade()});
    NotNegative("SweptDSA", {s.SettleTime(), s.MeasurementTime(), s.Amplitude()});
    Finite("SweptDSA", {s.Offset()});
  }

  void Look(const ZelMeter& m) {
    Expect(m.Measured() && m.CorrVar() && m.HarmonicXferVar(), "meter's variables");
    Positive("meter", {m.TSample(), m.HarmonicFreq()});
    NotNegative("meter", {m.Lpf(), m.AcHpf(), m.TWindow()});
    Finite("meter", {m.ExcitationMag(), m.ExcitationOff(), m.ExcitationMult()});
  }

  void Look(const ZelWave& wave) {
    const WaveSettings& s = wave.Settings();
    Expect(s.Index >= 0 && s.Index < ZelWave::WaveformCount, "Waveform");
    NotNegative("WaveGen", {s.FreqHz, s.DutyCycle, 100.0 - s.DutyCycle});
    Finite("WaveGen", {s.Amplitude, s.Offset, s.PhaseDeg});
  }

  std::string found_;
};

}  // namespace torvane::test
