#include "core/numeric.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "core/scale_steps.h"
#include "support/recorder.h"

namespace torvane {
namespace {

using test::Messages;
using test::Recorder;

TEST(Numeric, GuardsReplaceBadArgumentsAndSaySo) {
  Recorder recorder;
  EXPECT_EQ(Positive(1e-12, "Bandwidth"), 1e-12);
  EXPECT_EQ(NonNegative(0.0, "Damping"), 0.0);
  EXPECT_EQ(Positive(0.0, "Bandwidth"), 1e-10);
  EXPECT_EQ(Positive(std::nan(""), "Inertia"), 1e-10);
  EXPECT_EQ(NonNegative(-1e-300, "Damping"), 0.0);
  EXPECT_EQ(recorder.Take(),
            (Messages{"Error: Bandwidth <= 0.", "Error: Inertia <= 0.", "Error: Damping < 0."}));
}

TEST(Numeric, RoundsAndLimits) {
  EXPECT_EQ(FloorToStep(7.9, 2.0), 6.0);
  EXPECT_EQ(FloorToStep(-0.1, 2.0), -2.0);
  EXPECT_EQ(FloorToStep(7.9, 0.0), 7.9);
  EXPECT_EQ(RoundToStep(7.9, 2.0), 8.0);
  EXPECT_EQ(RoundToStep(-3.0, 2.0), -2.0);
  EXPECT_EQ(RoundToStep(7.9, 0.0), 7.9);
  // The bounds of Clamp come in either order.
  const double clamped[][4] = {
      {5, 3, 1, 3}, {0, 3, 1, 1}, {5, 1, 3, 3}, {2, 3, 1, 2}, {9, 4, 4, 4}};
  for (const auto& [x, a, b, expected] : clamped) EXPECT_EQ(Clamp(x, a, b), expected) << x << a;
  EXPECT_FALSE(std::signbit(WithoutMinusZero(-0.0)));
  for (const double x : {-2.5, -2.0, -0.3, 0.7, 3.0, 1e19, -1e300, HUGE_VAL}) {
    EXPECT_EQ(Floor(x), std::floor(x));
  }
  // One rounding of the logarithm, multiplied by an exponent of 5 in the exponential.
  constexpr double tolerance = 16 * std::numeric_limits<double>::epsilon();
  EXPECT_NEAR(Log10(1e5), 5.0, 5.0 * tolerance);
  EXPECT_NEAR(Exp10(-5.0), 1e-5, 1e-5 * tolerance);
}

// Compared exactly: a step gives the double nearest to its decimal value. From between two values
// it goes to the neighbour, not by a whole step; of what is negative the magnitude steps, and 0 is
// on no ladder.
TEST(ScaleSteps, GoToTheNeighbourOnTheirLadder) {
  const struct {
    double (*Step)(double);
    std::vector<std::pair<double, double>> FromTo;
  } steps[] = {{[](double x) { return NextHighestThisArray(x, CoarseLadder()); },
                {{8.5, 10}, {0.0065, 0.00707}, {-1.2, -1.4}, {0, 0}}},
               {[](double x) { return NextLowestThisArray(x, CoarseLadder()); },
                {{0.0065, 0.006}, {-1.2, -1.0}, {0, 0}}},
               {NextHighest10, {{9, 10}, {10, 20}, {0, 0}}},
               {NextHighest125, {{0.3, 0.5}, {-2, -5}, {5, 10}, {7, 10}, {10, 20}, {0, 0}}},
               {NextLowest125,
                {{1, 0.5}, {0.3, 0.2}, {0.7, 0.5}, {10, 5}, {5, 2}, {-2, -1}, {1.5, 1}, {0, 0}}}};
  for (const auto& [step, values] : steps) {
    for (const auto& [from, to] : values) EXPECT_EQ(step(from), to) << "from " << from;
  }
}

// Every press from 1e-9 to 1e9 and back: no value is skipped or repeated at a decade, where
// rounding of the logarithm could fall to either side.
TEST(ScaleSteps, WalksVisitEveryValueOfEveryDecade) {
  Recorder recorder;
  for (const Ladder ladder : {CoarseLadder(), FineLadder(), DecadeLadder()}) {
    const int perDecade = static_cast<int>(ladder.size()) - 1;
    double x = 1e-9;
    for (int step = 1; step <= 18 * perDecade; ++step) {
      x = NextHighestThisArray(x, ladder);
      const double mantissa = ladder[static_cast<std::size_t>(step % perDecade)];
      // pow(), the product and x itself are each rounded once: 3 * 1.1e-16.
      ASSERT_NEAR(x, mantissa * std::pow(10.0, step / perDecade - 9), x * 4e-16) << step;
    }
    EXPECT_EQ(x, 1e9);
    for (int step = 18 * perDecade; step > 0; --step) x = NextLowestThisArray(x, ladder);
    EXPECT_EQ(x, 1e-9);
  }
  EXPECT_EQ(NextHighestThisArray(-HUGE_VAL, FineLadder()), HUGE_VAL);
  EXPECT_EQ(NextLowestThisArray(HUGE_VAL, FineLadder()), HUGE_VAL);
  EXPECT_EQ(NextHighest10(HUGE_VAL), HUGE_VAL);
  EXPECT_EQ(recorder.Take(), (Messages{"Error: Internal Error:  NextHighestThisArray Failed",
                                       "Error: Internal Error:  NextLowestThisArray Failed",
                                       "Error: Internal Error:  NextHighest10 Failed"}));
}

}  // namespace
}  // namespace torvane
