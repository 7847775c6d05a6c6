#include "core/variable.h"

#include <gtest/gtest.h>

#include "core/bench.h"
#include "support/one_state_model.h"
#include "support/recorder.h"

namespace torvane {
namespace {

using test::Messages;
using test::OneStateModel;
using test::Recorder;

TEST(VariableTest, InstrumentsSeeTheValueTimesItsMultiplier) {
  Recorder recorder;
  ZelBenchTop bench;
  TimeVariable time(bench, "Time", "sec", {.Scale = 0.002, .Offset = 1.0});
  Variable speed(bench, "Motor Velocity", "RPM",
                 {.Scale = 10.0, .Offset = 20.0, .Multiplier = 9.5, .Shown = true});
  Variable plain(bench, "vE", "");
  speed.Value = 2.0;
  EXPECT_EQ(speed.DisplayValue(), 19.0);
  EXPECT_EQ(speed.DefaultScale(), 10.0);
  EXPECT_EQ(speed.DefaultOffset(), 20.0);
  EXPECT_TRUE(speed.ShownByDefault());
  plain.Value = 2.0;
  EXPECT_EQ(plain.DisplayValue(), 2.0);
  EXPECT_FALSE(plain.ShownByDefault());
  EXPECT_FALSE(plain.IsState());
  EXPECT_EQ(bench.TimeVar(), &time);
  EXPECT_EQ(bench.Variables(), (std::vector<Variable*>{&speed, &plain}));
  EXPECT_EQ(recorder.Take(), Messages{});
}

TEST(VariableTest, ResetGivesAVariableZeroAndAStateItsInitialValue) {
  OneStateModel model(0.5, 3.0, [](double, double) { return 0.0; });
  EXPECT_TRUE(model.X.IsState());
  EXPECT_EQ(model.X.Value, 3.0);
  model.X.Value = 4.0;
  model.First.Value = 4.0;
  model.X.Reset();
  model.First.Reset();
  EXPECT_EQ(model.X.Value, 3.0);
  EXPECT_EQ(model.First.Value, 0.0);
}

TEST(VariableTest, ComplainsOfWhatIsRegisteredTooEarly) {
  Recorder recorder;
  ZelBenchTop bench;
  Variable early(bench, "vE", "");
  EXPECT_TRUE(recorder.Ended);
  EXPECT_EQ(recorder.Take(),
            Messages{"Fatal Error: Error:  TimeVar must be initialized before other vars"});
  TimeVariable time(bench, "Time", "sec", {});
  StateVariable state(bench, "vF", "", 1.0);
  EXPECT_EQ(recorder.Take(), Messages{"Fatal Error: Solver not initializated when statevar added"});
}

}  // namespace
}  // namespace torvane
