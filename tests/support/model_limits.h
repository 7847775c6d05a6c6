#pragma once

#include <cmath>
#include <string>

#include "core/constant.h"
#include "core/model.h"
#include "instruments/fft/fft_analyser.h"
#include "instruments/meter/meter.h"
#include "instruments/scope/scope.h"
#include "instruments/sweep/swept_sine_analyser.h"
#include "library/wave.h"

namespace torvane::test {

/// Looks for settings that are outside what their setters allow, whoever set them.
class LimitCheck {
 public:
  /// What was found, a line each; empty when all is well.
  static std::string Run(const ZelModel& model) {
    LimitCheck check;
    check.Constants(model.Bench());
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
  void Expect(bool good, const std::string& what) {
    if (!good) found_ += what + "\n";
  }
  void Finite(double x, const std::string& what) { Expect(std::isfinite(x), what); }
  void Positive(double x, const std::string& what) { Expect(std::isfinite(x) && x > 0.0, what); }
  void NotNegative(double x, const std::string& what) {
    Expect(std::isfinite(x) && x >= 0.0, what);
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

  void Constants(const ZelBenchTop& bench) {
    for (const Constant* c : bench.Constants()) {
      Expect(c->Value() >= c->Lower() && c->Value() <= c->Upper(), c->Name());
    }
  }

  void Look(const ZelScope& scope) {
    int displayed = 0;
    int horizontal = scope.TimeChannel().IsHorizontal() ? 1 : 0;
    Axis(scope.TimeChannel());
    for (const auto& channel : scope.Channels()) {
      Axis(*channel);
      displayed += channel->Displayed() ? 1 : 0;
      horizontal += channel->IsHorizontal() ? 1 : 0;
    }
    Expect(displayed <= TraceColourCount, "displayed channels");
    Expect(horizontal == 1, "horizontal channels");
    Positive(scope.SampleInterval(), "sample interval");
    Finite(scope.Trigger().Level(), "trigger level");
    Finite(scope.Trigger().Position(), "trigger position");
    Finite(scope.Trigger().InitialDelayTime(), "initial delay");
    Finite(scope.Trigger().DelayAfterTime(), "delay after");
  }

  void Axis(const ZelChannel& channel) {
    for (const AxisScale& axis : {channel.Vertical(), channel.Horizontal()}) {
      Positive(std::abs(axis.Scale), "scale of " + channel.Name());
      Finite(axis.Offset, "offset of " + channel.Name());
    }
  }

  void Plot(const FrequencyAnalyser& analyser) {
    Positive(analyser.FreqMin(), "FreqMin");
    Expect(std::isfinite(analyser.FreqMax()) && analyser.FreqMax() > 1.009 * analyser.FreqMin(),
           "FreqMax");
    Positive(analyser.GainScale(), "GainScale");
    Positive(analyser.PhaseScale(), "PhaseScale");
    Finite(analyser.GainOffset(), "GainOffset");
    Finite(analyser.PhaseOffset(), "PhaseOffset");
  }

  void Look(const ZelXfer& xfer) {
    Plot(xfer);
    Expect(xfer.Order() >= ZelXfer::MinOrder && xfer.Order() <= xfer.MaxOrder(), "Order");
    Positive(xfer.TSample(), "Xfer tSample");
    NotNegative(xfer.TStartDelay(), "tStartDelay");
    NotNegative(xfer.TEndDelay(), "tEndDelay");
    Expect(xfer.TEndDelay() < xfer.Length() * xfer.TSample(), "tEndDelay of the record");
    NotNegative(xfer.Amplitude(), "Xfer amplitude");
    Finite(xfer.Offset(), "Xfer offset");
  }

  void Look(const ZelSweptDSA& swept) {
    Plot(swept);
    Positive(swept.TSample(), "SweptDSA tSample");
    Positive(swept.StartFreq(), "StartFreq");
    Positive(swept.EndFreq(), "EndFreq");
    Expect(swept.StepsPerDecade() > 0, "StepsPerDecade");
    NotNegative(swept.SettleTime(), "SettleTime");
    NotNegative(swept.MeasurementTime(), "MeasurementTime");
    NotNegative(swept.Amplitude(), "SweptDSA amplitude");
    Finite(swept.Offset(), "SweptDSA offset");
  }

  void Look(const ZelMeter& meter) {
    Expect(meter.Measured() && meter.CorrVar() && meter.HarmonicXferVar(), "meter's variables");
    Positive(meter.TSample(), "meter TSample");
    NotNegative(meter.Lpf(), "Lpf");
    NotNegative(meter.AcHpf(), "ACHpf");
    Positive(meter.HarmonicFreq(), "HarmonicFreq");
    NotNegative(meter.TWindow(), "TWindow");
    Finite(meter.ExcitationMag(), "ExcitationMag");
    Finite(meter.ExcitationOff(), "ExcitationOff");
    Finite(meter.ExcitationMult(), "ExcitationMult");
  }

  void Look(const ZelWave& wave) {
    const WaveSettings& s = wave.Settings();
    Expect(s.Index >= 0 && s.Index < ZelWave::WaveformCount, "Waveform");
    NotNegative(s.FreqHz, "FreqHz");
    Finite(s.Amplitude, "Amplitude");
    Finite(s.Offset, "Offset");
    Finite(s.PhaseDeg, "PhaseDeg");
    Expect(s.DutyCycle >= 0.0 && s.DutyCycle <= 100.0, "DutyCycle");
  }

  std::string found_;
};

}  // namespace torvane::test
