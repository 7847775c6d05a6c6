#include "core/model.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "core/constant.h"
#include "support/fake_instrument.h"
#include "support/one_state_model.h"
#include "support/recorder.h"

namespace torvane {
namespace {

using test::FakeInstrument;
using test::OneStateModel;
using Log = std::vector<std::string>;

TEST(ModelTest, ResetLeavesTimeAndFirstVariableAndEvaluatesOnceAtMinusOne) {
  std::vector<double> times;
  std::vector<double> seen;
  OneStateModel model(0.5, 2.0, [&](double t, double x) {
    times.push_back(t);
    seen.push_back(x);
    return 1.0;
  });
  Variable second(model.Bench(), "second", "");
  model.Solver().RunUntil(3.0);
  model.First.Value = 5.0;
  second.Value = 6.0;
  times.clear();
  seen.clear();

  model.Reset();
  // The walk over the variables starts at the second one: the first keeps its value for good.
  EXPECT_EQ(model.First.Value, 5.0);
  EXPECT_EQ(second.Value, 0.0);
  EXPECT_EQ(model.X.Value, 2.0);
  EXPECT_EQ(model.Time(), 3.0);
  EXPECT_EQ(times, std::vector<double>{-1.0});
  EXPECT_EQ(seen, std::vector<double>{2.0});  // outputs agree with the reset states
}

// A state that was registered first is spared by the walk but not by the solver.
TEST(ModelTest, ResetReachesAStateThatWasRegisteredFirst) {
  class StateFirst : public ZelModel {
   public:
    StateFirst() : ZelModel("State first", 0.5) {}
    void Derivatives(double) override {}
    TimeVariable T{Bench(), "Time", "sec", {}};
    StateVariable X{Bench(), "x", "", 4.0};
  } model;
  model.X.Value = 5.0;
  model.Reset();
  EXPECT_EQ(model.X.Value, 4.0);
}

TEST(ModelTest, ABaseThatCannotBeBuiltIsFatal) {
  class Oversized : public ZelModel {
   public:
    Oversized() : ZelModel("Oversized", 0.5, -1) {}
    void Derivatives(double) override {}
  };
  test::Recorder reports;
  EXPECT_THROW(Oversized(), std::exception);
  EXPECT_EQ(reports.Take(), test::Messages{"Fatal Error: Fault in ZelModel :: ZelModel"});
}

TEST(ModelTest, AChunkRunsToTheRequestedTimeAndServicesThen) {
  Log log;
  OneStateModel model(0.25, 0.0, [](double, double) { return 1.0; });
  FakeInstrument scope(InstrumentKind::Scope, "scope", log);
  model.Bench().AddInstrument(scope);
  scope.Requested = 0.6;
  scope.StopsAtService = 2;
  EXPECT_TRUE(model.RunChunk());
  scope.Requested = 1.0;
  EXPECT_FALSE(model.RunChunk());
  EXPECT_EQ(scope.ServicedAt, (std::vector<double>{0.75, 1.0}));
}

TEST(ModelTest, WithoutInstrumentsAChunkRunsAMillionSeconds) {
  OneStateModel model(1e4, 0.0, [](double, double) { return 1.0; });
  EXPECT_TRUE(model.RunChunk());
  EXPECT_EQ(model.Time(), 1e6);
}

TEST(ModelTest, DefaultsComeBackAndEveryScopeIsToldOfEveryConstant) {
  Log log;
  OneStateModel model(0.25, 0.0, [](double, double) { return 0.0; });
  Constant gain(model.Bench(), "KP", "", 1.0, 0.0, 10.0);
  Constant feedback(model.Bench(), "Feedback", {"Tach", "Encoder"});
  gain.Set(5.0);
  FakeInstrument scope(InstrumentKind::Scope, "scope", log);
  model.Bench().AddInstrument(scope);
  model.RestoreDefaults();
  EXPECT_EQ(gain.Value(), 1.0);
  EXPECT_EQ(feedback.Choice(), 0);
  EXPECT_NE(std::find(log.begin(), log.end(), "scope told of KP"), log.end());
  EXPECT_EQ(log.back(), "scope told of Feedback");
  model.Bench().History().Undo();
  EXPECT_EQ(gain.Value(), 5.0);
}

}  // namespace
}  // namespace torvane
