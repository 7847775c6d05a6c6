#include "instruments/analyser/response_curve.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>

#include "instruments/analyser/margins.h"

namespace torvane {
namespace {

Margins Read(const ResponseCurve& curve) {
  // What stands there of another curve goes.
  Margins margins{true, 1.0, 1.0, Margins::Reading{}, {{1.0, 1.0}}, {{1.0, 1.0}}};
  FindMargins(curve, margins);
  return margins;
}

TEST(Margins, AreReadBetweenThePointsThatCanBeTrusted) {
  // Straight lines on the logarithmic axis, a decade each: what lies between is exact to rounding.
  ResponseCurve curve{{1.0, 20.0, -130.0},    {10.0, -20.0, -170.0}, {20.0, 99.0, -20.0},
                      {100.0, -40.0, -190.0}, {1e3, 10.0, -500.0},   {1e4, -90.0, -600.0}};
  curve[2].Excited = false;
  const Margins margins = Read(curve);
  ASSERT_EQ(margins.PhaseMargins.size(), 3U);
  EXPECT_NEAR(margins.PhaseMargins[0].Hz, std::sqrt(10.0), 1e-12);
  EXPECT_NEAR(margins.PhaseMargins[0].Value, 30.0, 1e-12);
  // 180 - 438 and 180 - 510 degrees, less whole turns.
  EXPECT_NEAR(margins.PhaseMargins[1].Value, 102.0, 1e-9);
  EXPECT_NEAR(margins.PhaseMargins[2].Value, 30.0, 1e-9);
  ASSERT_EQ(margins.GainMargins.size(), 2U);
  EXPECT_NEAR(margins.GainMargins[0].Hz, 10.0 * std::sqrt(10.0), 1e-9);
  EXPECT_NEAR(margins.GainMargins[0].Value, 30.0, 1e-9);
  EXPECT_NEAR(margins.GainMargins[1].Value, 30.0, 1e-9);  // at -540 degrees
  EXPECT_FALSE(margins.GainBandwidth || margins.Peaking);
  EXPECT_FALSE(Read({}).SmallestGainMargin());
  const Margins closed = Read({{1.0, 1.0, -10.0}, {10.0, -5.0, -110.0}, {99.0, 5.0, -400.0}});
  EXPECT_NEAR(*closed.GainBandwidth, std::pow(10.0, 4.0 / 6.0), 1e-9);
  EXPECT_NEAR(*closed.PhaseBandwidth, std::pow(10.0, 0.8), 1e-9);
  EXPECT_TRUE(closed.PhaseMargins.empty() && closed.GainMargins.empty());
}

TEST(Margins, TakeACurveThatScattersAboutALevelForOneCrossing) {
  // At 0 dB the phase scatters about 0 degrees, so the phase margin about half a turn.
  const ResponseCurve scattered{{1, 50, 1}, {1.2, 40, 1}, {1.4, 30, 1},  {1.6, 25, 1},
                                {2, 20, 1}, {3, 0.1, 1},  {4, -0.1, -1}, {5, 0.1, 1}};
  const Margins flat = Read(scattered);
  ASSERT_EQ(flat.PhaseMargins.size(), 1U);
  EXPECT_GT(std::abs(flat.PhaseMargins[0].Value), 179.0);
  const Margins open = Read({{1, -9, -170}, {2, -10, -181}, {3, -11, -179}, {4, -12, -190}});
  ASSERT_EQ(open.GainMargins.size(), 1U);
  EXPECT_NEAR(open.GainMargins[0].Value, 10.5, 0.5);
  // Clear of the level in between, they are two.
  EXPECT_EQ(Read({{1, 39, -170}, {2, 35, -187}, {3, 32, -173}}).GainMargins.size(), 2U);
}

TEST(Margins, FindThePeakBetweenThePointsOfASweep) {
  // A parabola in log f: its top is found whatever points it is given by.
  const auto gain = [](double hz) { return 6.0 - 40.0 * std::pow(std::log10(hz / 33.0), 2); };
  ResponseCurve curve;
  for (const double hz : {10.0, 20.0, 31.0, 45.0, 90.0}) curve.push_back({hz, gain(hz), 0.0});
  const Margins margins = Read(curve);
  ASSERT_TRUE(margins.Peaking);
  EXPECT_NEAR(margins.Peaking->Hz, 33.0, 1e-9);
  EXPECT_NEAR(margins.Peaking->Value, 6.0, 1e-9);
}

TEST(ResponseCurve, OpensAClosedLoopAndTellsItsDelay) {
  // L = 100 e^(-sT) / s, closed, wrapped, and back again. With eight digits of pi a turn is
  // 6e-6 degrees off.
  constexpr double Delay = 0.004;
  constexpr std::complex<double> J(0.0, 1.0);
  ResponseCurve curve;
  for (double hz = 1.0; hz < 900.0; hz *= 1.02) {
    const double w = 2.0 * 3.1415926 * hz;
    const std::complex<double> open = 100.0 / (J * w) * std::exp(-J * w * Delay);
    const std::complex<double> closed = open / (1.0 + open);
    curve.push_back(
        {hz, 20.0 * std::log10(std::abs(closed)), std::arg(closed) * 180.0 / 3.1415926});
  }
  OpenFromClosed(curve);
  UnwrapPhase(curve);
  std::vector<double> delay;
  GroupDelay(curve, delay);
  for (std::size_t i = 0; i < curve.size(); ++i) {
    EXPECT_NEAR(curve[i].Gain, 20.0 * std::log10(100.0 / (2.0 * 3.1415926 * curve[i].Hz)), 1e-9);
    EXPECT_NEAR(curve[i].Phase, -90.0 - 360.0 * Delay * curve[i].Hz, 1e-4);
    EXPECT_NEAR(delay[i], Delay, 1e-8);
  }
}

}  // namespace
}  // namespace torvane
