#include <cmath>
#include <complex>
#include <functional>

#include "instruments/analyser/margins.h"
#include "instruments/meter/meter.h"
#include "instruments/sweep/swept_sine_analyser.h"
#include "models/loop.h"

// The open loop of 3-1 as the FFT analyser, a sweep and a meter measure it, against its transfer
// function, and margins of several loops. Other responses stand among the reference files.

namespace torvane {
namespace {

using Complex = std::complex<double>;

double Gain(Complex response) {
  return 20.0 * std::log10(std::abs(response));
}
double Phase(Complex response) {
  return std::arg(response) * 180.0 / M_PI;
}

Complex S(double f) {
  return {0.0, 2.0 * M_PI * f};
}
Complex LowPass2(double f, double hz) {
  const double w = 2.0 * M_PI * hz;
  return w * w / (S(f) * S(f) + 2.0 * 0.707 * w * S(f) + w * w);
}

// KP (1 + KI/s), power converter, G/s, feedback filter.
Complex OpenLoop(double f) {
  return 0.6 * (1.0 + 100.0 / S(f)) * LowPass2(f, 800.0) * 500.0 / S(f) * LowPass2(f, 350.0);
}

// The sampled loops: the controller, and what the samples see of hold, time of calculation, current
// loop and inertia, with the first images of the sampling. 2-1 feeds back the change of position
// per sample.
constexpr double Period = 0.0002;
Complex Sampled(double f, double kvd, double calculation, bool ofPosition = false) {
  const Complex back = std::exp(-S(f) * Period);
  const double b = std::exp(-2.0 * M_PI * 2000.0 * Period);
  const Complex derivative = kvd * (1.0 - back) / Period * (1.0 - b) / (1.0 - b * back);
  Complex plant = 0.0;
  for (int image = -3; image <= 3; ++image) {
    const double at = f + image / Period;
    const Complex hold = (1.0 - back) / (S(at) * Period);
    plant += hold * (ofPosition ? hold : 1.0) * std::exp(-S(at) * calculation * Period) *
             LowPass2(at, 800.0) / (0.002 * S(at));
  }
  return 0.72 * (1.0 + 100.0 * Period / (1.0 - back) + derivative) * plant;
}

Margins OfEquations(const std::function<Complex(double)>& loop) {
  ResponseCurve curve;
  for (double f = 2.0; f < 1500.0; f *= 1.001) {
    curve.push_back({f, Gain(loop(f)), Phase(loop(f))});
  }
  Margins margins;
  UnwrapPhase(curve);
  FindMargins(curve, margins);
  return margins;
}

struct MeasuredLoop {
  const char* Model;
  const char* Settings;
  bool Closed;  ///< the open loop is computed from the closed one
  std::function<Complex(double)> Equations;
};

// The sampled loops are sampled when the records are, a hair early as those, so that no rounding of
// the time moves a sample by a step.
TEST(LoopMargins, AgreeWithTheEquations) {
  const std::string early = "Constant,TSample,0.0001999999998\n";
  const std::string velocity = "Xfer,MainXFer,InputChannel,vE\nXfer,MainXFer,OutputChannel,vF\n";
  for (const auto& [model, settings, closed, equations] :
       {MeasuredLoop{
            "2-1 PI+ Controller",
            "Constant,KVFR,100\nXfer,MainXFer,InputChannel,vC\nXfer,MainXFer,OutputChannel,vF\n",
            true, [](double f) { return Sampled(f, 0.0, 0.0, true); }},
        MeasuredLoop{"3-1 PI Controller",
                     "Xfer,MainXFer,InputChannel,Error\nXfer,MainXFer,OutputChannel,Feedback\n",
                     false, OpenLoop},
        MeasuredLoop{"4-1 Digital PI Controller", "", false,
                     [](double f) { return Sampled(f, 0.0, 0.65); }},
        MeasuredLoop{"6-1 PID Controller", "Constant,KVD,0.0003\n", false,
                     [](double f) { return Sampled(f, 0.0003, 0.65); }}}) {
    SCOPED_TRACE(model);
    test::Loop loop(model);
    if (loop.Bench().FindConst("TSample")) loop.Load(early);
    if (loop.Bench().FindVar("vE")) loop.Load(velocity);
    if (*settings) loop.Load(settings);
    loop.Load(
        "Xfer,MainXFer,Order,13\nXfer,MainXFer,tStartDelay,0\nXfer,MainXFer,tEndDelay,0.5\n"
        "Xfer,MainXFer,ExAmplitude,2\nXfer,MainXFer,tSample,0.0001999999998\n");
    loop.Generate(0.0);
    loop.Run(2.5 * loop.Model().Solver().Step());
    MarginReader reader;
    const Margins& measured = reader.Read(loop.Measure(), 0, closed);
    const Margins expected = OfEquations(equations);
    const auto expect = [](const Margins::Reading* actual, const Margins::Reading* theory,
                           double most) {
      ASSERT_TRUE(actual && theory);
      EXPECT_NEAR(actual->Value, theory->Value, most);
      EXPECT_NEAR(actual->Hz / theory->Hz, 1.0, 0.01);
    };
    expect(measured.SmallestPhaseMargin(), expected.SmallestPhaseMargin(), 1.0);
    expect(measured.SmallestGainMargin(), expected.SmallestGainMargin(), 0.3);
  }
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

TEST_F(Responses, FftAnalyserReadsTheLoop) {
  ZelXfer& fft = loop_.Measure();
  for (const double f : {5.0, 20.0, 80.0, 300.0}) {
    ExpectOpenLoop(f, fft.GainAt(0, f), fft.PhaseAt(0, f));
  }
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
