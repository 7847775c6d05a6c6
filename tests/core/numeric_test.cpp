#include "core/numeric.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/recorder.h"

namespace torvane {
namespace {

using test::Messages;
using test::Recorder;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

TEST(NumericTest, GuardsReplaceBadArgumentsAndSaySo) {
  Recorder recorder;
  EXPECT_EQ(Positive(1e-12, "Bandwidth"), 1e-12);
  EXPECT_EQ(NonNegative(0.0, "Damping"), 0.0);
  EXPECT_EQ(recorder.Take(), Messages{});

  EXPECT_EQ(Positive(0.0, "Bandwidth"), 1e-10);
  EXPECT_EQ(Positive(NaN, "Inertia"), 1e-10);
  EXPECT_EQ(NonNegative(-1e-300, "Damping"), 0.0);
  EXPECT_EQ(recorder.Take(),
            (Messages{"Error: Bandwidth <= 0.", "Error: Inertia <= 0.", "Error: Damping < 0."}));
}

TEST(NumericTest, StepsRoundDownwardsOrToTheNearest) {
  EXPECT_EQ(FloorToStep(7.9, 2.0), 6.0);
  EXPECT_EQ(FloorToStep(-0.1, 2.0), -2.0);
  EXPECT_EQ(FloorToStep(7.9, 0.0), 7.9);
  EXPECT_EQ(RoundToStep(7.9, 2.0), 8.0);
  EXPECT_EQ(RoundToStep(-3.0, 2.0), -2.0);
  EXPECT_EQ(RoundToStep(7.9, 0.0), 7.9);
}

TEST(NumericTest, ClampTakesItsBoundsInEitherOrder) {
  EXPECT_EQ(Clamp(5.0, 3.0, 1.0), 3.0);
  EXPECT_EQ(Clamp(0.0, 3.0, 1.0), 1.0);
  EXPECT_EQ(Clamp(5.0, 1.0, 3.0), 3.0);
  EXPECT_EQ(Clamp(2.0, 3.0, 1.0), 2.0);
  EXPECT_EQ(Clamp(9.0, 4.0, 4.0), 4.0);
}

TEST(NumericTest, LogarithmAndExponentialAreToBaseTen) {
  // One rounding of the logarithm, multiplied by an exponent of 5 in the exponential.
  constexpr double tolerance = 16 * std::numeric_limits<double>::epsilon();
  EXPECT_NEAR(Log10(1e5), 5.0, 5.0 * tolerance);
  EXPECT_NEAR(Exp10(-5.0), 1e-5, 1e-5 * tolerance);
}

}  // namespace
}  // namespace torvane
