#include "core/scale_steps.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/recorder.h"

namespace torvane {
namespace {

using test::Messages;
using test::Recorder;

// Results are compared exactly: a step gives the double nearest to its decimal value.

TEST(ScaleStepsTest, StepsOnTheCoarseLadder) {
  EXPECT_EQ(NextHighestThisArray(1.0, CoarseLadder()), 1.2);
  EXPECT_EQ(NextHighestThisArray(10.0, CoarseLadder()), 12.0);
  EXPECT_EQ(NextHighestThisArray(8.5, CoarseLadder()), 10.0);
  EXPECT_EQ(NextLowestThisArray(1.0, CoarseLadder()), 0.85);
  EXPECT_EQ(NextLowestThisArray(7.07, CoarseLadder()), 6.0);
  EXPECT_EQ(NextLowestThisArray(12.0, CoarseLadder()), 10.0);
  // Between two values of the ladder: to the neighbour, not by a whole step.
  EXPECT_EQ(NextHighestThisArray(0.0065, CoarseLadder()), 0.00707);
  EXPECT_EQ(NextLowestThisArray(0.0065, CoarseLadder()), 0.006);
}

TEST(ScaleStepsTest, MagnitudeStepsAndTheSignStays) {
  EXPECT_EQ(NextHighestThisArray(-1.0, CoarseLadder()), -1.2);
  EXPECT_EQ(NextHighestThisArray(-1.2, CoarseLadder()), -1.4);
  EXPECT_EQ(NextLowestThisArray(-1.2, CoarseLadder()), -1.0);
  EXPECT_EQ(NextHighest125(-2.0), -5.0);
  EXPECT_EQ(NextLowest125(-2.0), -1.0);
  for (const auto step : {NextHighest10, NextHighest125, NextLowest125}) EXPECT_EQ(step(0.0), 0.0);
  EXPECT_EQ(NextHighestThisArray(0.0, FineLadder()), 0.0);
  EXPECT_EQ(NextLowestThisArray(0.0, FineLadder()), 0.0);
}

TEST(ScaleStepsTest, OneTwoFive) {
  EXPECT_EQ(NextHighest125(0.3), 0.5);
  EXPECT_EQ(NextHighest125(2.0), 5.0);
  EXPECT_EQ(NextHighest125(5.0), 10.0);
  EXPECT_EQ(NextHighest125(10.0), 20.0);
  EXPECT_EQ(NextLowest125(1.0), 0.5);
  EXPECT_EQ(NextLowest125(0.3), 0.2);
  EXPECT_EQ(NextLowest125(10.0), 5.0);
  EXPECT_EQ(NextLowest125(1.5), 1.0);
}

// Every button press from 1e-9 to 1e9 and back moves to the neighbour: no value is skipped or
// repeated at a decade, where rounding of the logarithm could fall to either side.
TEST(ScaleStepsTest, WalksVisitEveryValueOfEveryDecade) {
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
  EXPECT_EQ(NextHighest10(9.0), 10.0);
  EXPECT_EQ(NextHighest10(10.0), 20.0);
  EXPECT_EQ(recorder.Take(), Messages{});
}

TEST(ScaleStepsTest, SaysWhenNoStepIsPossible) {
  Recorder recorder;
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(NextHighestThisArray(-infinity, FineLadder()), infinity);
  EXPECT_EQ(NextLowestThisArray(infinity, FineLadder()), infinity);
  EXPECT_EQ(NextHighest10(infinity), infinity);
  EXPECT_EQ(recorder.Take(), (Messages{"Error: Internal Error:  NextHighestThisArray Failed",
                                       "Error: Internal Error:  NextLowestThisArray Failed",
                                       "Error: Internal Error:  NextHighest10 Failed"}));
}

}  // namespace
}  // namespace torvane
