#include "instruments/scope/screen_measures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <numbers>
#include <vector>

namespace torvane {
namespace {

struct Screen {
  std::vector<double> Times, Command, Response;
};

// 401 points over 20 ms; the command steps from -1 to 1 after 2 ms and back after 18 ms, and the
// response, from -3 to 1, follows the given unit step response.
Screen StepOf(const std::function<double(double)>& unit) {
  Screen screen;
  for (int i = 0; i <= 400; ++i) {
    const double t = i * 5e-5;
    const bool high = i >= 40 && i < 360;
    screen.Times.push_back(t + 1000.0);
    screen.Command.push_back(high ? 1.0 : -1.0);
    screen.Response.push_back(i < 40 ? -3.0 : -3.0 + 4.0 * unit(t - 2e-3));
  }
  return screen;
}

std::optional<StepMeasures> Measured(const Screen& s) {
  return MeasureStep(s.Times, s.Command, s.Response);
}

// Linear interpolation over points 50 us apart is off by h^2 / 8 times the curvature: below a
// microsecond for these time constants.
constexpr double Interpolation = 1e-6;

TEST(ScreenMeasures, AStepOfFirstOrderHasItsClosedForm) {
  constexpr double tau = 1e-3;
  const auto m = Measured(StepOf([](double t) { return 1.0 - std::exp(-t / tau); }));
  ASSERT_TRUE(m);
  EXPECT_NEAR(m->RiseTime, tau * std::log(9.0), Interpolation);
  EXPECT_NEAR(m->SettlingTime, tau * std::log(50.0), Interpolation);
  EXPECT_NEAR(m->Delay, tau * std::log(2.0), Interpolation);
  EXPECT_NEAR(m->OvershootPercent, 0.0, 1e-3);  // the final value is a mean of points still rising
}

TEST(ScreenMeasures, AStepOfSecondOrderOvershootsByItsDampingAlone) {
  constexpr double zeta = 0.4;
  const double wd = 2500.0 * std::sqrt(1.0 - zeta * zeta);
  const auto m = Measured(StepOf([&](double t) {
    return 1.0 - std::exp(-zeta * 2500.0 * t) *
                     (std::cos(wd * t) + zeta * 2500.0 / wd * std::sin(wd * t));
  }));
  ASSERT_TRUE(m);
  const double peak = std::exp(-std::numbers::pi * zeta / std::sqrt(1.0 - zeta * zeta));
  EXPECT_NEAR(m->OvershootPercent, 100.0 * peak, 0.1);  // the peak may fall between two points
  EXPECT_GT(m->SettlingTime, m->RiseTime);
}

TEST(ScreenMeasures, WhatHasNoStepToMeasureGivesNothing) {
  Screen good = StepOf([](double t) { return 1.0 - std::exp(-t / 1e-3); });
  Screen flatCommand = good;
  flatCommand.Command.assign(401, 1.0);
  Screen ramp = good;
  for (int i = 0; i <= 400; ++i) ramp.Command[static_cast<std::size_t>(i)] = i;
  Screen still = good;
  still.Response.assign(401, 2.0);
  const Screen slow = StepOf([](double t) { return 1.0 - std::exp(-t / 1e-2); });
  const Screen ringing = StepOf([](double t) { return 1.0 + 0.3 * std::sin(5000.0 * t); });
  Screen broken = good;
  broken.Response[390 - 40] = std::numeric_limits<double>::infinity();
  for (const Screen& s : {flatCommand, ramp, still, slow, ringing, broken}) {
    EXPECT_FALSE(Measured(s));
  }
  EXPECT_FALSE(MeasureStep({}, {}, {}));
}

TEST(ScreenMeasures, ATraceIsMeasuredByItsFiniteValues) {
  const std::vector<double> values{1.0, -3.0, std::nan(""), 2.0};
  const auto m = MeasureTrace(values);
  ASSERT_TRUE(m);
  EXPECT_EQ(m->Mean, 0.0);
  EXPECT_EQ(m->Rms, std::sqrt(14.0 / 3.0));
  EXPECT_EQ(m->PeakToPeak(), 5.0);
  EXPECT_FALSE(MeasureTrace({}));
}

}  // namespace
}  // namespace torvane
