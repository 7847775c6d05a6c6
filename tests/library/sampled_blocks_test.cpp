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

// The sample clock and the sampled filters.

namespace torvane {
namespace {

constexpr double T = 0.001;
constexpr double TwoPiAsBuilt = 6.2831852;

// The frequency that decays by one half per sample: exp(-w T) = 1/2. The way there and back through
// Hz costs a few units in the last place, which EXPECT_DOUBLE_EQ grants.
const double HalvingHz = std::log(2.0) / (TwoPiAsBuilt * T);

using Numbers = std::vector<double>;

void ExpectNear(const Numbers& actual, const Numbers& expected, double tolerance) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < actual.size(); ++i) EXPECT_NEAR(actual[i], expected[i], tolerance);
}

Numbers Impulse(ZelDLibraryClass& filter, int count) {
  Numbers response;
  for (int n = 0; n < count; ++n) response.push_back(filter.Step(n == 0 ? 1.0 : 0.0));
  return response;
}

class SampledBlocks : public testing::Test {
 protected:
  test::BareModel model_;
  ZelDController clock_{model_.Bench(), T};
};

TEST(SampleClock, RaisesTheFlagAtEachPeriodAndCatchesUpOnePeriodPerTick) {
  struct Tick {
    double Time;
    bool Due;
  };
  test::BareModel model;
  ZelDController clock(model.Bench(), 0.001);
  const auto expect = [&](std::initializer_list<Tick> ticks) {
    for (const Tick& tick : ticks) {
      clock.AtTime(tick.Time);
      EXPECT_EQ(clock.SampleDue(), tick.Due) << tick.Time;
    }
  };
  expect({{0.0, true}, {0.0, false}, {0.0005, false}, {0.001, true}});
  // Due at 2, 3 and 4 ms: three ticks at 4.5 ms make up for them.
  expect({{0.0045, true}, {0.0045, true}, {0.0045, true}, {0.0045, false}, {-1.0, false}});
  // A new period counts from the sample that is already due, at 5 ms.
  clock.SetPeriod(0.25);
  expect({{0.005, true}, {0.2549, false}, {0.255, true}});
  // A reset of everything makes the first sample due now; one of the states changes nothing.
  model.Bench().AdvanceTime(0.3);
  model.Reset();
  expect({{0.3, false}});
  model.ResetEverything();
  expect({{0.3, true}, {0.54, false}, {0.55, true}});
  model.ResetEverything();
  EXPECT_FALSE(clock.SampleDue());
}

TEST_F(SampledBlocks, FirstOrderHalvesTheDistanceAndHoldsAtZeroHz) {
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

TEST(MatchedPair, BothBranchesMeetAtCriticalDampingAndStayFinite) {
  for (const double zeta : {std::nextafter(1.0, 0.0), 1.0, std::nextafter(1.0, 2.0)}) {
    EXPECT_DOUBLE_EQ(MatchedPair(700.0, zeta, T).C1, -2.0 * std::exp(-0.7));
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

// Double poles at 1/2: a1 = -1, a2 = 1/4.
TEST_F(SampledBlocks, SecondOrderFiltersHaveTheImpulseResponsesOfTheirPolesAndZeros) {
  auto& lowPass = clock_.Add<ZelDLowPass2>(10.0, 2.0);
  lowPass.SetFrequency(HalvingHz);
  lowPass.SetDamping(1.0);
  // (n + 1) / 2^n of it, as often as b0 = 1/4.
  ExpectNear(Impulse(lowPass, 4), {0.25, 0.25, 0.1875, 0.125}, 1e-15);

  // True notch: b1 = -2 g cos(ln 2), b2 = g, where g divides by 0.46, a difference of numbers
  // near 2.
  const double c = std::cos(std::log(2.0));
  const double g = 0.25 / (2.0 - 2.0 * c);
  const double second = -2.0 * c * g + g;
  ExpectNear(Impulse(clock_.Add<ZelDNotch>(HalvingHz, 1.0), 3), {g, second, g + second - 0.25 * g},
             2e-15);

  // Zeros moved alone, to 1/4 twice: g = (1/4) / (9/16) = 4/9, b1 = -2/9, b2 = 1/36.
  auto& general = clock_.Add<ZelDNotch>(HalvingHz, 1.0, HalvingHz, 1.0, 0.0);
  general.SetZeroFrequency(2.0 * HalvingHz);
  ExpectNear(Impulse(general, 3), {4.0 / 9.0, 2.0 / 9.0, 5.0 / 36.0}, 1e-15);

  // Both past outputs are given.
  EXPECT_NEAR(clock_.Add<ZelDLowPass2>(45.0, 0.707, 5.0).Step(5.0), 5.0, 1e-14);
  EXPECT_NEAR(clock_.Add<ZelDNotch>(HalvingHz, 1.0, 4.0).Step(0.0), 3.0, 1e-14);
}

TEST_F(SampledBlocks, NotchTakesItsFrequencyOutPassesDcAndAtZeroHzEverything) {
  auto& notch = clock_.Add<ZelDNotch>(100.0, 0.4);
  notch.SetFrequency(60.0);
  notch.SetDamping(0.7);
  double last = 1.0;
  for (int n = 0; n < 1000; ++n) last = notch.Step(std::cos(TwoPiAsBuilt * 60.0 * T * n));
  EXPECT_NEAR(last, 0.0, 1e-12);  // the transient is gone; the phase of the cosine rounds at 1e-14
  for (int n = 0; n < 1000; ++n) last = notch.Step(3.0);
  EXPECT_NEAR(last, 3.0, 1e-12);
  auto& open = clock_.Add<ZelDNotch>(45.0, 0.7);
  open.SetFrequency(0.0);
  for (const double x : {3.0, -1.0, 7.0, 0.5}) EXPECT_EQ(open.Step(x), x);
}

TEST_F(SampledBlocks, AResetForgetsOverflowsOnly) {
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
