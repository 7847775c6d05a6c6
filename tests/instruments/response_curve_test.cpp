#include "instruments/analyser/response_curve.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>

#include "instruments/analyser/margins.h"
#include "instruments/analyser/response_reading.h"

namespace torvane {
namespace {

Margins Read(const ResponseCurve& curve, ReadAs as = ReadAs::Auto) {
  return FindMargins(curve, as);
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
  EXPECT_EQ(closed.HighestHz(), *closed.PhaseBandwidth);
  Margins read;  // of each kind the highest, one after the other
  EXPECT_EQ(read.HighestHz(), 0.0);
  for (auto* const readings : {&read.GainMargins, &read.PhaseMargins}) {
    const double hz = read.HighestHz() + 10.0;
    *readings = {{1.0, 0.0}, {hz, 0.0}, {2.0, 0.0}};
    EXPECT_EQ(read.HighestHz(), hz);
  }
  read.Sensitivity = {30.0, 0.0};
  EXPECT_EQ(read.HighestHz(), 30.0);
}

TEST(Margins, TakeACurveThatScattersAboutALevelForOneCrossing) {
  // At 0 dB the phase scatters about 0 degrees, so the phase margin about half a turn.
  const ResponseCurve scattered{{1, 50, 1},  {1.2, 40, 1},  {1.4, 30, 1}, {1.6, 25, 1}, {2, 20, 1},
                                {3, 0.1, 1}, {4, -0.1, -1}, {5, 0.1, 1},  {6, -0.1, -1}};
  const Margins flat = Read(scattered);
  ASSERT_EQ(flat.PhaseMargins.size(), 1U);
  EXPECT_GT(std::abs(flat.PhaseMargins[0].Value), 179.0);
  // Where it comes back to its side, there is none.
  EXPECT_TRUE(Read({scattered.begin(), scattered.end() - 1}).PhaseMargins.empty());
  const Margins open = Read({{1, -9, -170}, {2, -10, -181}, {3, -11, -179}, {4, -12, -190}});
  ASSERT_EQ(open.GainMargins.size(), 1U);
  EXPECT_NEAR(open.GainMargins[0].Value, 10.5, 0.5);
  // Clear of the level in between, they are two.
  EXPECT_EQ(Read({{1, 39, -170}, {2, 35, -187}, {3, 32, -173}}).GainMargins.size(), 2U);
}

// Every other point a little above the smooth curve and the others below: how a measurement
// scatters.
ResponsePoint Point(double hz, std::complex<double> value, double scatter = 0.0) {
  return {hz, 20.0 * std::log10(std::abs(value)) + scatter,
          std::arg(value) * 180.0 / std::numbers::pi + 10.0 * scatter};
}

// 1 / (1 - u^2 + 2 j z u) about 100 Hz with a damping of 0.005 and a gain of 0.1 behind it: at 90
// degrees of lag it has 20 log10(0.1 / 0.01), and more at its top by 1 / sqrt(1 - z^2).
TEST(Margins, AreThoseOfANarrowResonanceWhateverPointsItIsGivenBy) {
  constexpr double Damping = 0.005;
  for (const double step : {0.001, 0.003, 0.01}) {
    ResponseCurve curve;
    for (double u = 0.5; u < 2.0; u *= 1.0 + step) {
      const std::complex<double> resonance =
          0.1 / std::complex<double>(1.0 - u * u, 2.0 * Damping * u);
      curve.push_back(Point(100.0 * u, -std::complex<double>(0.0, 1.0) * resonance));
    }
    UnwrapPhase(curve);
    const Margins margins = Read(curve, ReadAs::Open);
    ASSERT_EQ(margins.GainMargins.size(), 1U) << step;
    EXPECT_NEAR(margins.GainMargins[0].Value, -20.0, 0.05) << step;
    EXPECT_NEAR(margins.GainMargins[0].Hz, 100.0, 0.1);
    // It comes up through 0 dB and goes down again, however narrow it is.
    EXPECT_EQ(margins.PhaseMargins.size(), 2U);
    const Margins closed = Read(curve, ReadAs::Closed);
    ASSERT_TRUE(closed.Peaking);
    EXPECT_NEAR(closed.Peaking->Value, 20.0 - 10.0 * std::log10(1.0 - Damping * Damping), 1e-6);
    EXPECT_NEAR(closed.Peaking->Hz, 100.0 * std::sqrt(1.0 - 2.0 * Damping * Damping), 1e-6);
  }
}

TEST(Margins, LeaveOutWhatScatterMakes) {
  // k / s (1 + s)^2 in rad/s at bins, whose phase begins next to -180 degrees where `type` is 2.
  const auto read = [](double gain, int type, double scatter) {
    ResponseCurve curve;
    for (int bin = 1; bin <= 500; ++bin) {
      const std::complex<double> s(0.0, 0.01 * bin);
      const auto lag = type == 1 ? 1.0 / (1.0 + s) : (1.0 + 4.0 * s) / s;
      curve.push_back(Point(bin, gain / s * lag / (1.0 + s), bin % 2 ? scatter : -scatter));
    }
    UnwrapPhase(curve);
    return Read(curve, ReadAs::Open);
  };
  const Margins one = read(0.5, 1, 0.05);
  ASSERT_EQ(one.GainMargins.size(), 1U);
  EXPECT_NEAR(one.GainMargins[0].Value, 12.04, 0.1);
  EXPECT_EQ(one.PhaseMargins.size(), 1U);
  // At the lowest bins it scatters about -180 degrees and stays above.
  EXPECT_TRUE(read(0.5, 2, 0.3).GainMargins.empty());
  // What scatters by more than a few degrees where it crosses is not told.
  const Margins rough = read(0.5, 1, 2.0);
  EXPECT_TRUE(rough.Empty());
  EXPECT_EQ(rough.Missing.back(), "no gain margin: the response scatters too much there");
}

TEST(Margins, SayWhatAResponseIsTakenForAndWhyNothingIsRead) {
  const auto lag = [](double gain, bool integrates) {
    ResponseCurve curve;
    for (double hz = 0.5; hz < 50.0; hz += 0.5) {
      const std::complex<double> s(0.0, hz / 100.0);
      curve.push_back(Point(hz, integrates ? gain / (gain + s) : gain / (1.0 + s)));
    }
    return Read(curve);
  };
  EXPECT_TRUE(lag(0.2, true).Closed);
  for (const double gain : {0.55, 0.7, 1.5, 1.9}) EXPECT_FALSE(lag(gain, false).Closed) << gain;
  EXPECT_EQ(lag(0.55, false).Missing,
            (std::vector<std::string>{
                "no sensitivity: it has no greatest value within the response",
                "no phase margin: the gain does not cross 0 dB from 0.5 to 49.5 Hz",
                "no gain margin: the phase does not cross -180 degrees from 0.5 to 49.5 Hz"}));
  EXPECT_EQ(Read({}).Missing.size(), 1U);
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
  // Of a closed loop that is this close to unity, too little is left to tell the open one by.
  ResponseCurve close{{1.0, GainDb(0.9995), 0.0}, {2.0, GainDb(0.99), 0.0}};
  OpenFromClosed(close);
  EXPECT_FALSE(close[0].Trusted());
  EXPECT_TRUE(close[1].Trusted());
}

}  // namespace
}  // namespace torvane
