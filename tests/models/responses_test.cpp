#include <cmath>
#include <complex>

#include "instruments/analyser/margins.h"
#include "instruments/meter/meter.h"
#include "instruments/sweep/swept_sine_analyser.h"
#include "models/loop.h"

// The open loop of 3-1 as the FFT analyser, a sweep and a meter measure it, against its transfer
// function, and the margins that are read off it. Responses of other loops stand among the
// reference files.

namespace torvane {
namespace {

using Complex = std::complex<double>;

double Gain(Complex response) {
  return 20.0 * std::log10(std::abs(response));
}
double Phase(Complex response) {
  return std::arg(response) * 180.0 / M_PI;
}

// KP (1 + KI/s), power converter, G/s, feedback filter.
Complex OpenLoop(double f) {
  const Complex s(0.0, 2.0 * M_PI * f);
  const auto lowPass = [&](double hz) {
    const double w = 2.0 * M_PI * hz;
    return w * w / (s * s + 2.0 * 0.707 * w * s + w * w);
  };
  return 0.6 * (1.0 + 100.0 / s) * lowPass(800.0) * 500.0 / s * lowPass(350.0);
}

Margins Theory() {
  ResponseCurve curve;
  for (double f = 2.0; f < 1500.0; f *= 1.001) {
    curve.push_back({f, Gain(OpenLoop(f)), Phase(OpenLoop(f))});
  }
  Margins margins;
  UnwrapPhase(curve);
  FindMargins(curve, margins);
  return margins;
}

class Responses : public testing::Test {
 protected:
  Responses() {
    loop_.Generate(0.0);
    // Between two steps, and a hair early: every sample falls on the step that it is meant to,
    // whatever the sum of steps rounds to.
    loop_.Run(2.5e-5);
    loop_.Load(
        "Xfer,MainXFer,InputChannel,Error\nXfer,MainXFer,OutputChannel,Feedback\n"
        "Xfer,MainXFer,tStartDelay,0\nXfer,MainXFer,ExAmplitude,2\nXfer,MainXFer,tSample,0."
        "0001999999998\n"
        "Xfer,MainXFer,tEndDelay,0.5\n"
        "SweptDSA,MainSweptDSA,InputChannel,Error\nSweptDSA,MainSweptDSA,OutputChannel,Feedback\n"
        "SweptDSA,MainSweptDSA,EndFreq,300\nSweptDSA,MainSweptDSA,StepsPerDecade,5\n"
        "SweptDSA,MainSweptDSA,ExAmplitude,2\nSweptDSA,MainSweptDSA,MeasurementTime,0.5\n");
  }

  static void ExpectOpenLoop(double f, double gain, double phase) {
    EXPECT_NEAR(gain, Gain(OpenLoop(f)), 0.3) << f << " Hz";
    EXPECT_NEAR(std::remainder(phase - Phase(OpenLoop(f)), 360.0), 0.0, 2.0) << f << " Hz";
  }

  test::Loop loop_{"3-1 PI Controller"};
};

TEST_F(Responses, FftAnalyserReadsLoopAndMargins) {
  ZelXfer& fft = loop_.Measure();
  for (const double f : {5.0, 20.0, 80.0, 300.0}) {
    ExpectOpenLoop(f, fft.GainAt(0, f), fft.PhaseAt(0, f));
  }
  MarginReader reader;
  const Margins& measured = reader.Read(fft, 0, false);
  const Margins expected = Theory();
  const auto expect = [](const Margins::Reading* actual, const Margins::Reading* theory) {
    ASSERT_TRUE(actual && theory);
    EXPECT_NEAR(actual->Value / theory->Value, 1.0, 0.02);
    EXPECT_NEAR(actual->Hz / theory->Hz, 1.0, 0.01);
  };
  expect(measured.SmallestPhaseMargin(), expected.SmallestPhaseMargin());
  expect(measured.SmallestGainMargin(), expected.SmallestGainMargin());
}

TEST_F(Responses, SweepReadsTheLoop) {
  auto& sweep = loop_.The<ZelSweptDSA>(InstrumentKind::SweptSine);
  sweep.Run();
  while (sweep.Measuring()) loop_.Model().RunChunk();
  ASSERT_GE(sweep.PointCount(), 9);
  for (int point = 0; point < sweep.PointCount(); ++point) {
    ExpectOpenLoop(sweep.PointFrequency(0, point), sweep.ResponseGain(0, point),
                   sweep.ResponsePhase(0, point));
  }
}

TEST_F(Responses, MeterReadsTheLoopThatItExcites) {
  ZelMeter meter(loop_.Bench(), "Meter");
  loop_.Load(
      "Meter,Meter,Harmonic,1\nMeter,Meter,VariableVar,Feedback\nMeter,Meter,HarmonicXfer,1\n"
      "Meter,Meter,HarmonicXferVar,Error\nMeter,Meter,UseDB,1\nMeter,Meter,HarmonicFreq,60\n"
      "Meter,Meter,TWindow,0.1\nMeter,Meter,UseExcite,1\nMeter,Meter,ExcitationMag,2\n");
  // Two windows: the first one holds the transient.
  while (loop_.Model().Time() < 0.3) {
    loop_.Run(meter.NextTime());
    meter.Service(loop_.Model().Time());
  }
  ExpectOpenLoop(60.0, meter.Value(), meter.AngleDeg());
}

}  // namespace
}  // namespace torvane
