#include "core/solver.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <deque>
#include <limits>
#include <utility>

#include "support/one_state_model.h"
#include "support/recorder.h"

namespace torvane {
namespace {

using test::Messages;
using test::OneStateModel;
using test::OnTime;
using test::Recorder;

double Growth(double /*t*/, double x) {
  return x;
}

double Constant1(double /*t*/, double /*x*/) {
  return 1.0;
}

TEST(SolverTest, OneStepIsTheFourthOrderPolynomial) {
  // 1 + h + h^2/2 + h^3/6 + h^4/24. Every sum up to the last is exact in binary with h = 1/2, and
  // the sixth taken in extended precision is lost in the rounding to double.
  OneStateModel model(0.5, 1.0, Growth);
  model.Solver().RunUntil(0.5);
  EXPECT_EQ(model.X.Value, 1.6484375);
}

TEST(SolverTest, AConstantSlopeGivesTheStepToTheLastBit) {
  // Exact for every step only because the sum is formed in extended precision: 6 h (1/6) in double
  // misses 0.3 and 0.7 by a bit.
  for (const double h : {1e-5, 5e-5, 0.1, 0.3, 0.7}) {
    OneStateModel model(h, 0.0, Constant1);
    model.Solver().RunUntil(h);
    EXPECT_EQ(model.X.Value, h);
  }
}

TEST(SolverTest, ConvergesInTheFourthOrder) {
  // dx/dt = x cos t from 1: x = exp(sin t).
  const auto error = [](int steps) {
    OneStateModel model(2.0 / steps, 1.0, [](double t, double x) { return x * std::cos(t); });
    for (int i = 0; i < steps; ++i) {
      model.Solver().RunUntil(model.Time() + 0.5 * model.Solver().Step());
    }
    return std::fabs(model.X.Value - std::exp(std::sin(2.0)));
  };
  // The term of fifth order is h = 1/64 times a factor of order one beside that of fourth; at 256
  // steps the error, 1e-10, is still far above the rounding of 256 sums.
  EXPECT_NEAR(std::log2(error(128) / error(256)), 4.0, 0.05);
}

TEST(SolverTest, DerivativesRunFirstAtEachTimeAndTheTimeDrivenFollowInOrder) {
  std::vector<std::pair<std::string, double>> seen;
  OneStateModel model(0.25, 0.0, [&](double t, double) {
    seen.emplace_back("model", t);
    return 0.0;
  });
  OnTime clock(model.Bench(), [&](double t) { seen.emplace_back("clock", t); });
  OnTime source(model.Bench(), [&](double t) { seen.emplace_back("source", t); });
  model.Solver().RunUntil(1.0);
  seen.clear();
  model.Solver().RunUntil(1.25);
  std::vector<std::pair<std::string, double>> expected;
  for (const double t : {1.0, 1.125, 1.125, 1.25}) {
    for (const char* who : {"model", "clock", "source"}) expected.emplace_back(who, t);
  }
  EXPECT_EQ(seen, expected);
}

TEST(SolverTest, AModelWithoutStatesIsEvaluatedAllTheSame) {
  class Stateless : public ZelModel {
   public:
    Stateless() : ZelModel("Stateless", 0.25) {}
    void Derivatives(double) override { ++Calls; }
    TimeVariable T{Bench(), "Time", "sec", {}};
    int Calls = 0;
  } model;
  int ticks = 0;
  OnTime clock(model.Bench(), [&](double) { ++ticks; });
  model.Solver().RunUntil(0.5);
  EXPECT_EQ(model.Solver().Count(), 0);
  EXPECT_EQ(model.Calls, 8);
  EXPECT_EQ(ticks, 8);
}

TEST(SolverTest, RunsToTheFirstBoundaryAtOrAfterTheEnd) {
  OneStateModel model(0.25, 0.0, Constant1);  // binary step: times are exact
  model.Solver().RunUntil(0.0);
  model.Solver().RunUntil(-1.0);
  EXPECT_EQ(model.Time(), 0.0);
  model.Solver().RunUntil(0.025);
  EXPECT_EQ(model.Time(), 0.25);
  EXPECT_EQ(model.T.Value, 0.0);  // the time variable reads the start of the last step
  model.Solver().RunUntil(0.25);
  EXPECT_EQ(model.Time(), 0.25);
  model.Solver().RunUntil(1.0);
  EXPECT_EQ(model.Time(), 1.0);
  model.Solver().RunUntil(1.01);
  EXPECT_EQ(model.Time(), 1.25);
  EXPECT_EQ(model.T.Value, 1.0);
  EXPECT_EQ(model.X.Value, 1.25);
}

TEST(SolverTest, APendingValueReplacesTheResultAtTheEndOfItsStep) {
  std::vector<double> seen;
  OneStateModel model(0.5, 0.0, [&](double, double x) {
    seen.push_back(x);
    return 1.0;
  });
  OnTime limiter(model.Bench(), [&](double t) {
    if (t == 0.0) model.X.SetPending(7.0);
    if (t == 0.75) model.X.Value = 99.0;  // not how it is done: lost at the next sub-step
  });
  model.Solver().RunUntil(0.5);
  EXPECT_EQ(model.X.Value, 7.0);
  EXPECT_FALSE(model.X.PendingSet);
  model.Solver().RunUntil(1.0);
  EXPECT_EQ(model.X.Value, 7.5);
  EXPECT_EQ(seen, (std::vector<double>{0.0, 0.25, 0.25, 0.5, 7.0, 7.25, 7.25, 7.5}));
}

TEST(SolverTest, ResetRestoresTheStatesAndLeavesTheTime) {
  OneStateModel model(0.5, 2.0, Constant1);
  model.Solver().RunUntil(3.0);
  model.Solver().Reset();
  EXPECT_EQ(model.X.Value, 2.0);
  EXPECT_EQ(model.Time(), 3.0);
  model.Solver().RunUntil(3.5);
  EXPECT_EQ(model.X.Value, 2.5);
}

TEST(SolverTest, HoldsAsManyStatesAsItWasBuiltFor) {
  Recorder recorder;
  OneStateModel model(0.5, 0.0, Constant1);
  std::deque<StateVariable> states;
  for (int i = 2; i <= 50; ++i) {
    states.emplace_back(model.Bench(), std::to_string(i), "", 1.0);
  }
  EXPECT_EQ(model.Solver().Count(), 50);
  EXPECT_EQ(recorder.Take(), Messages{});
  StateVariable surplus(model.Bench(), "x51", "", 1.0);
  EXPECT_EQ(recorder.Take(),
            Messages{"Fatal Error: Exceeded max order of solver; increase max order and "
                     "recompile"});
  EXPECT_TRUE(recorder.Ended);
  model.Solver().RunUntil(0.5);
  EXPECT_EQ(model.Solver().Count(), 50);
}

/// What the exception of a run says; empty when the run ends well.
std::string Overflow(ZelModel& model, double tEnd) {
  try {
    model.Solver().RunUntil(tEnd);
  } catch (const SolverOverflow& overflow) {
    return overflow.what();
  }
  return {};
}

TEST(SolverTest, AnOverflowStopsTheRunAfterItsStep) {
  volatile double huge = 1e300;  // the multiplication must happen at run time
  int evaluations = 0;
  OneStateModel model(0.25, 0.0, [&](double t, double) {
    ++evaluations;
    return t == 0.625 ? std::fmin(huge * huge, 1.0) : 1.0;
  });
  std::feraiseexcept(FE_OVERFLOW);  // an overflow of somebody else's before the run is not ours
  const std::string text = Overflow(model, 2.0);
  EXPECT_NE(text.find("\"x\""), std::string::npos) << text;
  EXPECT_NE(text.find("0.75 s"), std::string::npos) << text;
  EXPECT_EQ(model.Time(), 0.75);  // the whole step was made, and no other
  EXPECT_EQ(evaluations, 12);
  EXPECT_EQ(model.X.Value, 0.75);
  EXPECT_EQ(Overflow(model, 2.0), "");
  EXPECT_EQ(model.X.Value, 2.0);
}

TEST(SolverTest, AStateThatIsNotFiniteStopsTheRunAndIsKept) {
  bool broken = true;
  OneStateModel model(0.25, 0.0, [&](double t, double) {
    return broken && t >= 0.5 ? std::numeric_limits<double>::quiet_NaN() : 1.0;
  });
  StateVariable before(model.Bench(), "before", "", 1e9);
  // The last evaluation of the second step is at 0.5.
  const std::string text = Overflow(model, 2.0);
  EXPECT_NE(text.find("\"x\""), std::string::npos) << text;
  EXPECT_NE(text.find("0.5 s"), std::string::npos) << text;
  EXPECT_TRUE(std::isnan(model.X.Value));
  EXPECT_EQ(before.Value, 1e9);
  EXPECT_NE(Overflow(model, 2.0), "");  // still broken: a step at a time
  EXPECT_EQ(model.Time(), 0.75);
  broken = false;
  model.Reset();
  EXPECT_EQ(Overflow(model, 2.0), "");
  EXPECT_EQ(model.X.Value, 1.25);
}

}  // namespace
}  // namespace torvane
