#include "core/solver.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <deque>
#include <utility>

#include "support/bare_model.h"
#include "support/one_state_model.h"
#include "support/recorder.h"

namespace torvane {
namespace {

using test::BareModel;
using test::Messages;
using test::OneStateModel;
using test::OnTime;

double One(double /*t*/, double /*x*/) {
  return 1.0;
}

TEST(Solver, OneStepIsTheFourthOrderPolynomialToTheLastBit) {
  // 1 + h + h^2/2 + h^3/6 + h^4/24. Every sum up to the last is exact in binary with h = 1/2, and
  // the sixth taken in extended precision is lost in the rounding to double.
  OneStateModel model(0.5, 1.0, [](double, double x) { return x; });
  model.Solver().RunUntil(0.5);
  EXPECT_EQ(model.X.Value, 1.6484375);
  // A constant slope is exact for every step only because the sum is formed in extended precision:
  // 6 h (1/6) in double misses 0.3 and 0.7 by a bit.
  for (const double h : {1e-5, 5e-5, 0.1, 0.3, 0.7}) {
    OneStateModel constant(h, 0.0, One);
    constant.Solver().RunUntil(h);
    EXPECT_EQ(constant.X.Value, h);
  }
}

TEST(Solver, DerivativesRunFirstAtEachTimeAndTheTimeDrivenFollowInOrder) {
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

TEST(Solver, RunsToTheFirstBoundaryAtOrAfterTheEnd) {
  OneStateModel model(0.25, 0.0, One);  // binary step: times are exact
  const double runs[][2] = {{0, 0}, {-1, 0}, {0.025, 0.25}, {0.25, 0.25}, {1, 1}, {1.01, 1.25}};
  for (const auto& [until, time] : runs) {
    model.Solver().RunUntil(until);
    EXPECT_EQ(model.Time(), time);
    EXPECT_EQ(model.X.Value, time);
    // The time variable reads the start of the last step.
    EXPECT_EQ(model.T.Value, std::max(0.0, time - 0.25));
  }
}

TEST(Solver, APendingValueReplacesTheResultAtTheEndOfItsStep) {
  std::vector<double> seen;
  OneStateModel model(0.5, 0.0, [&](double, double x) {
    seen.push_back(x);
    return 1.0;
  });
  OnTime limiter(model.Bench(), [&](double t) {
    if (t == 0.0) model.X.SetPending(7.0);
    if (t == 0.75) model.X.Value = 99.0;  // not how it is done: lost at the next sub-step
  });
  model.Solver().RunUntil(1.0);
  EXPECT_EQ(model.X.Value, 7.5);
  EXPECT_EQ(seen, (std::vector<double>{0.0, 0.25, 0.25, 0.5, 7.0, 7.25, 7.25, 7.5}));
}

TEST(Solver, HoldsNoneToAsManyStatesAsItWasBuiltFor) {
  struct Stateless : ZelModel {
    Stateless() : ZelModel("Stateless", 0.25) {}
    void Derivatives(double) override { ++Calls; }
    TimeVariable T{Bench(), "Time", "sec", {}};
    int Calls = 0;
  } model;
  model.Solver().RunUntil(0.5);
  EXPECT_EQ(model.Calls, 8);
  test::Recorder recorder;
  std::deque<StateVariable> states;
  for (int i = 1; i <= 50; ++i) states.emplace_back(model.Bench(), std::to_string(i), "", i);
  states.emplace_back(model.Bench(), "51", "", 1.0);
  EXPECT_EQ(recorder.Take(), Messages{"Fatal Error: Exceeded max order of solver; increase max "
                                      "order and recompile"});
  EXPECT_TRUE(recorder.Ended);
  for (StateVariable& state : states) state.Derivative = 2.0;
  model.Solver().RunUntil(0.75);
  EXPECT_EQ(states[49].Value, 50.5);
  EXPECT_EQ(states[50].Value, 1.0);
  const ZelSolver second(model.Bench(), 0.1, model, 1);
  EXPECT_EQ(recorder.Take(),
            Messages{"Fatal Error: Attempt to add solver when one already is present"});
  EXPECT_EQ(model.Bench().Solver(), &model.Solver());
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

TEST(Solver, AnOverflowStopsTheRunAfterItsStep) {
  volatile double huge = 1e300;  // the multiplication must happen at run time
  int evaluations = 0;
  OneStateModel model(0.25, 0.0, [&](double t, double) {
    ++evaluations;
    return t == 0.625 ? std::fmin(huge * huge, 1.0) : 1.0;
  });
  std::feraiseexcept(FE_OVERFLOW);  // an overflow of somebody else's before the run is not ours
  EXPECT_EQ(Overflow(model, 2.0),
            "floating-point overflow in state \"x\" (value 0.75 volts) at time 0.75 s");
  EXPECT_EQ(model.Time(), 0.75);  // the whole step was made, and no other
  EXPECT_EQ(evaluations, 12);
  EXPECT_EQ(Overflow(model, 2.0), "");
  EXPECT_EQ(model.X.Value, 2.0);
}

TEST(Solver, AStateThatIsNotFiniteStopsTheRunAndIsKept) {
  bool broken = true;
  OneStateModel model(0.25, 0.0,
                      [&](double t, double) { return broken && t >= 0.5 ? std::nan("") : 1.0; });
  StateVariable before(model.Bench(), "before", "", 1e9);
  // The last evaluation of the second step is at 0.5.
  EXPECT_EQ(Overflow(model, 2.0), "floating-point overflow in state \"x\" at time 0.5 s");
  EXPECT_TRUE(std::isnan(model.X.Value));
  EXPECT_EQ(before.Value, 1e9);
  EXPECT_NE(Overflow(model, 2.0), "");  // still broken: a step at a time
  EXPECT_EQ(model.Time(), 0.75);
  broken = false;
  model.Reset();
  EXPECT_EQ(Overflow(model, 2.0), "");
  EXPECT_EQ(model.X.Value, 1.25);
}

// Close to the end of the numbers each step is watched, and what goes first in it is named.
TEST(Solver, NamesWhatGoesFirst) {
  const struct {
    double Start, Slope, Signal;  // of the state; all from the step's end on
    double Clock;                 // the factor that a time-driven object overflows with
    const char* Found;
  } cases[] = {
      {1e301, HUGE_VAL, 0, 0, "slope of state \"x\" (value 1e+301 volts a step before)"},
      {1e301, HUGE_VAL, HUGE_VAL, 0, "signal \"first\" (value 0 a step before)"},
      {1.79e308, 1.7e308, 0, 0, "state \"x\" (value 1.79e+308 volts a step before)"},
      {1e301, 1.0, 1e302, 1e300, "signal \"first\" (value 0 a step before)"},
      {0.0, HUGE_VAL, HUGE_VAL, 0, "signal \"first\""},
  };
  for (const auto& c : cases) {
    OneStateModel model(0.25, c.Start, [&](double t, double) {
      model.First.Value = t > 0.4 ? c.Signal : 0.0;
      return t > 0.4 ? c.Slope : 0.0;
    });
    volatile double product = 0.0;
    OnTime clock(model.Bench(), [&](double t) {
      if (t > 0.4) product = c.Clock * (c.Clock * 1.0);
    });
    EXPECT_EQ(Overflow(model, 2.0),
              std::string("floating-point overflow in ") + c.Found + " at time 0.5 s");
  }
}

// What belongs to a block has no name that a window shows: a signal stands for it, in its unit.
TEST(Solver, NamesWhatInstrumentsOffer) {
  for (const bool watched : {true, false}) {
    BareModel model(0.25);
    Variable speed(model.Bench(), "speed", "RPM", {.Multiplier = 10.0});
    StateVariable hidden(model.Bench(), "Block #1", "Null", watched ? 1e301 : 1.0, {},
                         Visibility::Internal);
    volatile double huge = 1e200;
    model.Loop = [&](double t) {
      speed.Value = 2.00000001;
      hidden.Derivative = t > 0.4 ? huge * huge : 0.0;
    };
    EXPECT_EQ(Overflow(model, 2.0),
              std::string("floating-point overflow in signal \"speed\" (value 20 RPM") +
                  (watched ? " a step before" : "") + ") at time 0.5 s");
  }
}

}  // namespace
}  // namespace torvane
