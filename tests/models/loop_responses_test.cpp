#include <gtest/gtest.h>

#include "models/response.h"

// The same response measured by the FFT analyser, by a sweep and by a meter; and the mechanics of
// 15-1 as they show in a measurement.

namespace torvane {
namespace {

using namespace test;

/// The response in a sweep's points.
ZelSweptDSA& TakeSweep(Loop& loop, const std::string& input, const std::string& output, double from,
                       double to, double tSample, double amplitude) {
  auto& sweep = loop.The<ZelSweptDSA>(InstrumentKind::SweptSine);
  sweep.SetInput(input);
  sweep.SetOutput(output);
  sweep.SetTSample(tSample);
  sweep.SetStartFreq(from);
  sweep.SetEndFreq(to);
  sweep.ApplySweepRange();
  sweep.SetStepsPerDecade(8);
  sweep.SetSettleTime(0.1);
  sweep.SetMeasurementTime(5.0);
  sweep.SetAmplitude(amplitude);
  sweep.Run();
  while (sweep.Measuring()) {
    loop.Run(sweep.NextTick());
    sweep.Service(loop.Model().Time());
  }
  return sweep;
}

struct Reading {
  double Gain;
  double Phase;
};

/// The harmonic transfer of a meter that excites the loop itself.
Reading Metered(Loop& loop, const std::string& input, const std::string& output, double f,
                double amplitude) {
  ZelMeter meter(loop.Bench(), "Meter");
  meter.SetKind(MeterKind::Harmonic);
  meter.SetVariable(output);
  meter.SetHarmonicXfer(true);
  meter.SetHarmonicXferVar(input);
  meter.SetUseDb(true);
  meter.SetHarmonicFreq(f);
  meter.SetTWindow(0.1);
  meter.SetUseExcitation(true);
  meter.SetExcitationMag(amplitude);
  // Two windows: the first one holds the transient.
  const double end = loop.Model().Time() + 0.3;
  while (loop.Model().Time() < end) {
    loop.Run(meter.NextTime());
    meter.Service(loop.Model().Time());
  }
  return {meter.Value(), meter.AngleDeg()};
}

struct Measured {
  const char* Model;
  const char* Input;
  const char* Output;
  Settings Set;
  int SampleSteps;  ///< solver steps between two samples of the FFT analyser
  int TickSteps;    ///< and between two ticks of the sweep
  double To;        ///< Hz
};

class LoopResponses : public testing::TestWithParam<Measured> {};

// The excitations keep all loops out of their limits. What differs between the instruments: the FFT
// analyser holds its excitation from sample to sample, which costs 0.2 dB at an eighth of the
// sample rate; the sweep reads 180 f tick degrees early, 0.7 at 200 Hz and 20 us; a sample clock
// takes the FFT analyser's values a tenth of a period before their middle, 1.4 degrees at 200 Hz.
TEST_P(LoopResponses, ThreeInstrumentsAgree) {
  const Measured& m = GetParam();
  Loop loop(m.Model, m.Set);
  loop.Generate(0.0);
  const double step = loop.Model().Solver().Step();
  // A few steps after the sample clock, if there is one: samples and clock ticks never swap.
  loop.Run(2.5 * step);
  ZelXfer& fft = TakeRecord(loop, m.Input, m.Output, 13, StepsLong(loop, m.SampleSteps), 5.0);
  ZelSweptDSA& sweep =
      TakeSweep(loop, m.Input, m.Output, 5.0, m.To, StepsLong(loop, m.TickSteps), 2.0);
  ASSERT_GE(sweep.PointCount(), 12);
  for (int point = 0; point < sweep.PointCount(); ++point) {
    const double f = sweep.PointFrequency(0, point);
    EXPECT_NEAR(fft.GainAt(0, f), sweep.ResponseGain(0, point), 0.5) << f << " Hz";
    EXPECT_NEAR(Turn(fft.PhaseAt(0, f), sweep.ResponsePhase(0, point)), 0.0, 3.0) << f << " Hz";
    if (point % 5 != 2) continue;
    const Reading meter = Metered(loop, m.Input, m.Output, f, 2.0);
    EXPECT_NEAR(meter.Gain, fft.GainAt(0, f), 0.5) << f << " Hz";
    EXPECT_NEAR(meter.Gain, sweep.ResponseGain(0, point), 0.5) << f << " Hz";
    EXPECT_NEAR(Turn(meter.Phase, fft.PhaseAt(0, f)), 0.0, 3.0) << f << " Hz";
    EXPECT_NEAR(Turn(meter.Phase, sweep.ResponsePhase(0, point)), 0.0, 3.0) << f << " Hz";
  }
}

INSTANTIATE_TEST_SUITE_P(
    Models, LoopResponses,
    testing::Values(Measured{"3-1 PI Controller", "Command", "Response", {}, 20, 2, 300.0},
                    Measured{
                        "6-1 PID Controller", "vC", "vM", {{"TSample", "0.0002"}}, 20, 2, 200.0},
                    Measured{"9-1 Analog Filters", "vC", "vLP2", {}, 4, 1, 200.0}));

// Motor current to motor velocity of two inertias on a shaft:
//   KT (JL s^2 + KCV s + KS) / (s (JM JL s^2 + (JM + JL) (KCV s + KS)))
TEST(ResonanceResponse, ShowsResonanceAndAntiResonanceWhereTheMechanicsPutThem) {
  constexpr double JM = 0.0002;
  constexpr double JL = 0.0018;
  constexpr double KS = 2000.0;
  constexpr double KCV = 0.05;
  const auto plant = [&](double f) {
    const Complex s(0.0, 2.0 * M_PI * f);
    return (JL * s * s + KCV * s + KS) / (s * (JM * JL * s * s + (JM + JL) * (KCV * s + KS)));
  };
  Loop loop("15-1 Resonance", {{"KCV", "0.05"}, {"KVP", "0.05"}, {"LPF", "5000"}});
  loop.Generate(0.0);
  ZelXfer& fft = TakeRecord(loop, "iF", "vM", 13, StepsLong(loop, 2), 20.0);

  // Gain without the slope of an integrator, so that the extremes are those of the shaft.
  double lowest = 1e9, lowestAt = 0.0, highest = -1e9, highestAt = 0.0;
  for (int bin = 1; fft.BinFrequency(bin) < 700.0; ++bin) {
    const double f = fft.BinFrequency(bin);
    if (f < 50.0) continue;
    const double gain = fft.ResponseGain(0, bin) + 20.0 * std::log10(f);
    if (gain < lowest) {
      lowest = gain;
      lowestAt = f;
    }
    if (gain > highest) {
      highest = gain;
      highestAt = f;
    }
  }
  const double antiResonance = std::sqrt(KS / JL) / (2.0 * M_PI);
  const double resonance = std::sqrt(KS * (1.0 / JM + 1.0 / JL)) / (2.0 * M_PI);
  EXPECT_NEAR(antiResonance, 167.8, 0.1);
  EXPECT_NEAR(resonance, 530.5, 0.1);
  // A bin is 1.2 Hz; the damping of 4 % moves the peak by a fifth of a per cent.
  EXPECT_NEAR(lowestAt, antiResonance, 0.01 * antiResonance);
  EXPECT_NEAR(highestAt, resonance, 0.01 * resonance);
  // And as deep and as high, where the bins around them show it.
  EXPECT_NEAR(lowest, Decibels(plant(antiResonance) * antiResonance * 60.0 / (2.0 * M_PI)), 0.5);
  EXPECT_NEAR(highest, Decibels(plant(resonance) * resonance * 60.0 / (2.0 * M_PI)), 0.5);
}

}  // namespace
}  // namespace torvane
