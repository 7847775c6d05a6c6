#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/constant.h"
#include "library/low_pass1.h"
#include "library/low_pass2.h"
#include "library/notch.h"
#include "support/bare_model.h"

namespace torvane {
namespace {

// The frequency of an angular frequency in rad/s. The way there and back costs a unit or two in the
// last place, which EXPECT_DOUBLE_EQ grants.
double Hz(double omega) {
  return omega / (2.0 * 3.1415926);
}

TEST(LowPass1Test, StepsAsRungeKuttaDoesAndOutputsTheLastEvaluatedState) {
  test::BareModel model(0.125);
  ZelLowPass1 filter(model.Bench(), Hz(1.0));
  filter.SetFrequency(Hz(2.0));
  filter.SetInput(1.0);
  model.Solver().RunUntil(1.0);
  // For a constant input each step multiplies the distance by the method's polynomial, so eight
  // steps agree to rounding.
  const double z = -0.25;
  const double factor = 1.0 + z + z * z / 2.0 + z * z * z / 6.0 + z * z * z * z / 24.0;
  const double state = model.Signal("LowPass1").Value;
  EXPECT_NEAR(state, 1.0 - std::pow(factor, 8), 1e-14);
  EXPECT_NE(filter.Output(), state);  // the last evaluation tried an Euler step of its own
  filter.AtTime(1.0);
  EXPECT_EQ(filter.Output(), state);
  EXPECT_TRUE(model.Signal("LowPass1").Internal());
}

TEST(LowPass2Test, WritesTheDerivativesOfItsTwoStates) {
  test::BareModel model;
  ZelLowPass2 filter(model.Bench(), Hz(7.0), 3.0);
  filter.SetFrequency(Hz(2.0));
  filter.SetDamping(0.5);
  filter.SetInput(5.0);
  model.Signal("LowPass2 #1").Value = 2.0;
  model.Signal("LowPass2 #2").Value = 3.0;
  filter.AtTime(0.0);
  EXPECT_EQ(model.Slope("LowPass2 #1"), 3.0);
  EXPECT_DOUBLE_EQ(model.Slope("LowPass2 #2"), 4.0 * (5.0 - 2.0) - 2.0 * 3.0);
  EXPECT_EQ(filter.Output(), 2.0);
}

TEST(LowPass2Test, LinkedConstantsAreTakenOnceAfterEachChange) {
  test::BareModel model;
  Constant frequency(model.Bench(), "f", "Hz", 40.0, 0.0, 1000.0);
  Constant damping(model.Bench(), "zeta", "", 0.25, 0.0, 10.0);
  ZelLowPass2 filter(model.Bench(), 900.0, 0.707);
  filter.LinkFrequency(frequency);
  filter.LinkDamping(damping);
  EXPECT_EQ(filter.Frequency(), 900.0);
  filter.AtTime(0.0);
  EXPECT_EQ(filter.Frequency(), 40.0);
  EXPECT_EQ(filter.Damping(), 0.25);
  frequency.Set(70.0);
  filter.AtTime(0.0);
  EXPECT_EQ(filter.Frequency(), 70.0);
  filter.SetFrequency(80.0);
  filter.SetDamping(0.5);
  filter.AtTime(0.0);
  EXPECT_EQ(filter.Frequency(), 80.0);
  EXPECT_EQ(filter.Damping(), 0.5);
}

TEST(NotchTest, WritesTheDerivativesOfTheObserverForm) {
  test::BareModel model;
  // Poles at 2 rad/s and 0.5, zeros at 4 rad/s and 0.25: b0 = 1/4, b1 = 1/2, a1 = 2, a2 = 4.
  ZelNotch filter(model.Bench(), Hz(2.0), 0.5, Hz(4.0), 0.25);
  filter.SetInput(8.0);
  Variable& first = model.Signal("Notch #1");
  Variable& second = model.Signal("Notch #2");
  first.Value = 1.0;
  second.Value = 3.0;
  filter.AtTime(0.0);
  EXPECT_DOUBLE_EQ(filter.Output(), 3.0);
  EXPECT_DOUBLE_EQ(model.Slope("Notch #1"), 4.0 + 3.0 - 6.0);
  EXPECT_DOUBLE_EQ(model.Slope("Notch #2"), 4.0 * (8.0 - 3.0));

  // Both frequencies at 3 rad/s: b0 = 1, b1 = 2 * 0.25 * 3 = 1.5, a1 = 6 with a damping of 1, a2
  // = 9.
  filter.SetFrequency(Hz(3.0));
  filter.SetDamping(1.0);
  filter.AtTime(0.0);
  EXPECT_DOUBLE_EQ(filter.Output(), 9.0);
  EXPECT_DOUBLE_EQ(model.Slope("Notch #1"), 12.0 + 3.0 - 54.0);
  EXPECT_DOUBLE_EQ(model.Slope("Notch #2"), 9.0 * (8.0 - 9.0));

  // At 0 Hz everything passes and nothing moves but what moved.
  filter.SetFrequency(0.0);
  filter.AtTime(0.0);
  EXPECT_EQ(filter.Output(), 9.0);
  EXPECT_EQ(model.Slope("Notch #1"), 3.0);
  EXPECT_EQ(model.Slope("Notch #2"), 0.0);
}

TEST(ContinuousFiltersTest, OutputsFollowAResetAndInfiniteInputsAreDropped) {
  test::BareModel model;
  ZelLowPass1 first(model.Bench(), 10.0);
  ZelLowPass2 second(model.Bench(), 10.0, 0.7);
  ZelNotch notch(model.Bench(), 10.0, 0.7);
  for (const char* state : {"LowPass1", "LowPass2 #1", "Notch #1"}) model.Signal(state).Value = 4.0;
  const double infinity = std::numeric_limits<double>::infinity();
  first.SetInput(infinity);
  second.SetInput(infinity);
  notch.SetInput(infinity);
  model.Bench().UpdateTimeDriven(0.0);
  EXPECT_EQ(first.Output(), 4.0);
  model.Reset();
  EXPECT_EQ(first.Output(), 0.0);
  EXPECT_EQ(second.Output(), 0.0);
  EXPECT_EQ(notch.Output(), 0.0);
  model.Bench().UpdateTimeDriven(0.0);
  for (const char* state : {"LowPass1", "LowPass2 #2", "Notch #2"}) {
    EXPECT_EQ(model.Slope(state), 0.0) << state;
  }
}

}  // namespace
}  // namespace torvane
