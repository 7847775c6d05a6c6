#include "instruments/analyser/margins.h"

#include <gtest/gtest.h>

#include <functional>

#include "models/response.h"

// Margins of the loops as they are measured beside those of their transfer functions.

namespace torvane {
namespace {

using namespace test;

Complex S(double f) {
  return {0.0, 2.0 * M_PI * f};
}
Complex LowPass2(double f, double hz, double zeta) {
  const double w = 2.0 * M_PI * hz;
  return w * w / (S(f) * S(f) + 2.0 * zeta * w * S(f) + w * w);
}

// 3-1: KP (1 + KI/s), power converter, G/s, feedback filter.
Complex AnalogPi(double f) {
  return 0.6 * (1.0 + 100.0 / S(f)) * LowPass2(f, 800.0, 0.707) * 500.0 / S(f) *
         LowPass2(f, 350.0, 0.707);
}

// The sampled loops: the controller, and what the samples see of hold, time of calculation, current
// loop and inertia, with the first images of the sampling. 2-1 feeds back the change of position
// per sample.
constexpr double Period = 0.0002;
Complex Sampled(double f, double kvd, double calculation, bool ofPosition = false) {
  const Complex back = std::exp(-S(f) * Period);
  const double b = std::exp(-2.0 * M_PI * 2000.0 * Period);
  const Complex derivative = kvd * (1.0 - back) / Period * (1.0 - b) / (1.0 - b * back);
  const Complex controller = 0.72 * (1.0 + 100.0 * Period / (1.0 - back) + derivative);
  Complex plant = 0.0;
  for (int image = -3; image <= 3; ++image) {
    const double at = f + image / Period;
    const Complex hold = (1.0 - back) / (S(at) * Period);
    const Complex velocity = hold * std::exp(-S(at) * calculation * Period) *
                             LowPass2(at, 800.0, 0.707) / (0.002 * S(at));
    plant += ofPosition ? velocity * hold : velocity;
  }
  return controller * plant;
}

Margins Read(ResponseCurve curve) {
  Margins margins;
  UnwrapPhase(curve);
  FindMargins(curve, margins);
  return margins;
}

Margins OfEquations(const std::function<Complex(double)>& loop) {
  ResponseCurve curve;
  for (double f = 2.0; f < 1500.0; f *= 1.001) {
    curve.push_back({f, Decibels(loop(f)), Degrees(loop(f))});
  }
  return Read(curve);
}

const Settings::value_type HairEarly{"TSample", "0.0001999999998"};

struct MeasuredLoop {
  const char* Model;
  Settings Set;
  const char* Input;
  const char* Output;
  bool Closed;  ///< the open loop is computed from the closed one
  std::function<Complex(double)> Equations;
};

class LoopMargins : public testing::TestWithParam<MeasuredLoop> {};

// Records of 1.6 s at 5 kHz, bins of 0.6 Hz. The sampled loops are sampled when the records are, a
// hair early as those, so that no rounding of the time moves a sample by a step: what is left is
// single precision. The excitation is held from sample to sample and so has images from 4.5 kHz on,
// of which the continuous loop's records see the tail, some hundredths of a dB at its crossings.
TEST_P(LoopMargins, AgreeWithTheEquations) {
  const MeasuredLoop& m = GetParam();
  Loop loop(m.Model, m.Set);
  loop.Generate(0.0);
  loop.Run(2.5 * loop.Model().Solver().Step());
  ZelXfer& fft = TakeRecord(loop, m.Input, m.Output, 13, StepsLong(loop, 20), 2.0);
  MarginReader reader;
  const Margins& measured = reader.Read(fft, 0, m.Closed);
  const Margins expected = OfEquations(m.Equations);
  ASSERT_EQ(measured.PhaseMargins.size(), 1U);
  ASSERT_EQ(measured.GainMargins.size(), 1U);
  EXPECT_NEAR(measured.SmallestPhaseMargin()->Value, expected.SmallestPhaseMargin()->Value, 1.0);
  EXPECT_NEAR(measured.SmallestGainMargin()->Value, expected.SmallestGainMargin()->Value, 0.3);
  EXPECT_NEAR(measured.SmallestPhaseMargin()->Hz / expected.SmallestPhaseMargin()->Hz, 1.0, 0.01);
  EXPECT_NEAR(measured.SmallestGainMargin()->Hz / expected.SmallestGainMargin()->Hz, 1.0, 0.01);
}

INSTANTIATE_TEST_SUITE_P(
    Models, LoopMargins,
    testing::Values(
        MeasuredLoop{"2-1 PI+ Controller",
                     {HairEarly, {"KVFR", "100"}},
                     "vC",
                     "vF",
                     true,
                     [](double f) { return Sampled(f, 0.0, 0.0, true); }},
        MeasuredLoop{"3-1 PI Controller", {}, "Error", "Feedback", false, AnalogPi},
        MeasuredLoop{"4-1 Digital PI Controller",
                     {HairEarly},
                     "vE",
                     "vF",
                     false,
                     [](double f) { return Sampled(f, 0.0, 0.65); }},
        MeasuredLoop{
            "6-1 PID Controller", {HairEarly, {"KVD", "0.0003"}}, "vE", "vF", false, [](double f) {
              return Sampled(f, 0.0003, 0.65);
            }}));

}  // namespace
}  // namespace torvane
