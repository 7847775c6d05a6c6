#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <limits>
#include <vector>

#include "library/d_controller.h"
#include "library/d_low_pass1.h"
#include "library/d_low_pass2.h"
#include "library/d_notch.h"
#include "support/bare_model.h"

namespace torvane {
namespace {

constexpr double T = 0.001;
constexpr double TwoPiAsBuilt = 6.2831852;

// The frequency that decays by one half per sample: exp(-w T) = 1/2. The way there and back through
// Hz costs a few units in the last place, which EXPECT_DOUBLE_EQ grants.
const double HalvingHz = std::log(2.0) / (TwoPiAsBuilt * T);

class SampledFiltersTest : public testing::Test {
 protected:
  test::BareModel model_;
  ZelDController clock_{model_.Bench(), T};
};

std::vector<double> Impulse(ZelDLibraryClass& filter, int count) {
  std::vector<double> response;
  for (int n = 0; n < count; ++n) response.push_back(filter.Step(n == 0 ? 1.0 : 0.0));
  return response;
}

TEST_F(SampledFiltersTest, FirstOrderHalvesTheDistanceAndHoldsAtZeroHz) {
  auto& filter = clock_.Add<ZelDLowPass1>(HalvingHz);
  EXPECT_DOUBLE_EQ(filter.Step(8.0), 4.0);
  EXPECT_DOUBLE_EQ(filter.Step(8.0), 6.0);
  clock_.SetPeriod(2.0 * T);
  EXPECT_DOUBLE_EQ(filter.Step(0.0), 3.0);  // the clock's period does not change the coefficients
  filter.SetFrequency(HalvingHz);           // with the new period two halvings in a sample
  EXPECT_DOUBLE_EQ(filter.Step(7.0), 6.0);
  filter.SetFrequency(0.0);
  EXPECT_DOUBLE_EQ(filter.Step(1000.0), 6.0);
  EXPECT_DOUBLE_EQ(clock_.Add<ZelDLowPass1>(HalvingHz, 4.0).Step(0.0), 1.0);
}

TEST(MatchedPairTest, BothBranchesMeetAtCriticalDampingAndStayFinite) {
  const double critical = -2.0 * std::exp(-0.7);
  for (const double zeta : {std::nextafter(1.0, 0.0), 1.0, std::nextafter(1.0, 2.0)}) {
    EXPECT_DOUBLE_EQ(MatchedPair(700.0, zeta, T).C1, critical);
    EXPECT_DOUBLE_EQ(MatchedPair(700.0, zeta, T).C2, std::exp(-1.4));
  }
  EXPECT_DOUBLE_EQ(MatchedPair(1000.0, 2.0, T).C1,
                   -2.0 * std::exp(-2.0) * std::cosh(std::sqrt(3.0)));
  EXPECT_DOUBLE_EQ(MatchedPair(1000.0, 0.6, T).C1, -2.0 * std::exp(-0.6) * std::cos(0.8));

  // cosh of 62 thousand is beyond any double; the product with its exponential is not.
  std::feclearexcept(FE_ALL_EXCEPT);
  const DPair slowClock = MatchedPair(62832.0, 10.0, 0.1);
  EXPECT_FALSE(std::fetestexcept(FE_OVERFLOW | FE_INVALID));
  EXPECT_NEAR(slowClock.C1, 0.0, 1e-130);  // exp(-315), the slower of the two roots
}

TEST_F(SampledFiltersTest, SecondOrderLowPassHasTheImpulseResponseOfItsPoles) {
  const double hz = 45.0;
  const double zeta = 0.3;
  auto& filter = clock_.Add<ZelDLowPass2>(10.0, 2.0);
  filter.SetFrequency(hz);
  filter.SetDamping(zeta);
  const double radius = std::exp(-zeta * TwoPiAsBuilt * hz * T);
  const double angle = TwoPiAsBuilt * hz * T * std::sqrt(1.0 - zeta * zeta);
  const double b0 = 1.0 - 2.0 * radius * std::cos(angle) + radius * radius;
  const auto response = Impulse(filter, 60);
  for (int n = 0; n < 60; ++n) {
    const double exact = b0 * std::pow(radius, n) * std::sin((n + 1) * angle) / std::sin(angle);
    // b0 is 0.07 after a cancellation of numbers near 2; sixty steps add as many roundings.
    EXPECT_NEAR(response[static_cast<std::size_t>(n)], exact, 1e-14) << n;
  }
}

TEST_F(SampledFiltersTest, SecondOrderFiltersHaveUnityGainAtDc) {
  auto& lowPass = clock_.Add<ZelDLowPass2>(45.0, 1.7);
  auto& notch = clock_.Add<ZelDNotch>(45.0, 0.4);
  auto& general = clock_.Add<ZelDNotch>(200.0, 0.707, 80.0, 0.5, 0.0);
  double settled[3] = {};
  for (int n = 0; n < 2000; ++n) {
    settled[0] = lowPass.Step(3.0);
    settled[1] = notch.Step(3.0);
    settled[2] = general.Step(3.0);
  }
  // Rounding of the recursion, magnified by 1 / (1 + a1 + a2), which is below 20.
  for (const double y : settled) EXPECT_NEAR(y, 3.0, 1e-13);
  EXPECT_NEAR(clock_.Add<ZelDLowPass2>(45.0, 0.707, 5.0).Step(5.0), 5.0, 1e-14);
}

TEST_F(SampledFiltersTest, TrueNotchHasItsZerosOnTheUnitCircle) {
  // Poles 1/2 twice: a1 = -1, a2 = 1/4. Zeros: b1 = -2 g cos(ln 2), b2 = g.
  auto& filter = clock_.Add<ZelDNotch>(HalvingHz, 1.0);
  const double c = std::cos(std::log(2.0));
  const double g = 0.25 / (2.0 - 2.0 * c);
  const double second = -2.0 * c * g + g;
  const double third = g + second - 0.25 * g;
  const auto response = Impulse(filter, 3);
  // Tolerances: g divides by 0.46, the difference of 2 and 1.54.
  EXPECT_NEAR(response[0], g, 2e-15);
  EXPECT_NEAR(response[1], second, 2e-15);
  EXPECT_NEAR(response[2], third, 2e-15);

  auto& notch = clock_.Add<ZelDNotch>(100.0, 0.4);
  notch.SetFrequency(60.0);
  notch.SetDamping(0.7);
  double last = 1.0;
  for (int n = 0; n < 1000; ++n) last = notch.Step(std::cos(TwoPiAsBuilt * 60.0 * T * n));
  EXPECT_NEAR(last, 0.0, 1e-12);  // the transient is gone; the phase of the cosine rounds at 1e-14
}

TEST_F(SampledFiltersTest, ZeroFrequencyMovesTheZerosAlone) {
  // Double poles at 1/2 and double zeros at 1/4: g = (1/4) / (9/16) = 4/9.
  auto& filter = clock_.Add<ZelDNotch>(HalvingHz, 1.0, HalvingHz, 1.0, 0.0);
  filter.SetZeroFrequency(2.0 * HalvingHz);
  const auto response = Impulse(filter, 3);
  EXPECT_DOUBLE_EQ(response[0], 4.0 / 9.0);
  EXPECT_DOUBLE_EQ(response[1], 2.0 / 9.0);   // b1 = -2/9, plus 4/9
  EXPECT_DOUBLE_EQ(response[2], 5.0 / 36.0);  // b2 = 1/36, plus 2/9, minus 1/9
}

TEST_F(SampledFiltersTest, NotchAtZeroHzPassesEverything) {
  auto& filter = clock_.Add<ZelDNotch>(45.0, 0.7);
  filter.SetFrequency(0.0);
  for (const double x : {3.0, -1.0, 7.0, 0.5}) EXPECT_EQ(filter.Step(x), x);
}

TEST_F(SampledFiltersTest, AResetForgetsOverflowsOnly) {
  auto& first = clock_.Add<ZelDLowPass1>(HalvingHz);
  auto& second = clock_.Add<ZelDNotch>(HalvingHz, 1.0);
  auto& healthy = clock_.Add<ZelDLowPass1>(HalvingHz);
  first.Step(std::numeric_limits<double>::infinity());
  second.Step(std::numeric_limits<double>::quiet_NaN());
  healthy.Step(8.0);
  model_.Reset();
  EXPECT_DOUBLE_EQ(first.Step(8.0), 4.0);
  EXPECT_TRUE(std::isfinite(second.Step(8.0)));
  EXPECT_DOUBLE_EQ(healthy.Step(8.0), 6.0);
}

}  // namespace
}  // namespace torvane
