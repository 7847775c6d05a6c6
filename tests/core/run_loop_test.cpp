#include "core/run_loop.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/fake_instrument.h"
#include "support/one_state_model.h"
#include "support/recorder.h"

namespace torvane {
namespace {

using test::Messages;
using test::Recorder;

/// A model with a scope that asks for every step.
class RunLoopTest : public testing::Test {
 protected:
  class EveryStep : public test::FakeInstrument {
   public:
    explicit EveryStep(std::vector<std::string>& log)
        : FakeInstrument(InstrumentKind::Scope, "scope", log) {}
    double NextTime() const override { return static_cast<double>(ServicedAt.size() + 1) * 0.25; }
  };

  RunLoopTest() { model.Bench().AddInstrument(scope); }

  std::vector<std::string> log;
  EveryStep scope{log};
  double slope = 1.0;
  test::OneStateModel model{0.25, 0.0, [this](double, double) {
                              if (slope < 0.0) throw std::runtime_error("no slope");
                              return slope;
                            }};
  Recorder recorder;
};

TEST_F(RunLoopTest, APassRunsTwentyFiveChunks) {
  EXPECT_EQ(RunPass(model), PassResult::Running);
  EXPECT_EQ(scope.ServicedAt.size(), 25u);
  EXPECT_EQ(model.Time(), 25 * 0.25);
}

// A chunk of years, cut again and again, steps as one that runs through.
TEST(RunLoop, APassEndsWithinAChunkWhenItsTimeIsUp) {
  const auto slope = [](double t, double x) { return t * 1e-3 - 0.1 * x; };
  test::OneStateModel cut{0.25, 0.0, slope};
  int looks = 0;
  for (int pass = 1; cut.Time() < 3000.0; ++pass) {
    const double until = cut.Time() + pass % 100;
    EXPECT_EQ(RunPass(
                  cut, [&] { return ++looks % 2 == 0; }, until),
              PassResult::Running);
    EXPECT_LE(cut.Time(), until);
  }
  EXPECT_LT(cut.Time(), 3200.0);
  test::OneStateModel whole{0.25, 0.0, slope};
  whole.Solver().RunUntil(cut.Time());
  EXPECT_EQ(cut.X.Value, whole.X.Value);
}

TEST_F(RunLoopTest, AnInstrumentStopsThePass) {
  scope.StopsAtService = 7;
  EXPECT_EQ(RunPass(model), PassResult::Stopped);
  EXPECT_EQ(scope.ServicedAt.size(), 7u);
}

TEST_F(RunLoopTest, ABusyScopePausesThePass) {
  scope.IsBusy = true;
  EXPECT_EQ(RunPass(model), PassResult::Paused);
  EXPECT_EQ(model.Time(), 0.0);
  scope.IsBusy = false;
  test::OnTime work(model.Bench(), [this](double t) { scope.IsBusy = t >= 1.0; });
  EXPECT_EQ(RunPass(model), PassResult::Paused);
  EXPECT_EQ(model.Time(), 1.0);
}

TEST_F(RunLoopTest, AnOverflowOffersToResetTheStates) {
  slope = 1e308;
  EXPECT_THROW(RunPass(model), SolverOverflow);
  const SolverOverflow overflow("state \"x\"");
  const double keptTime = model.Time();
  const double kept = model.X.Value;
  recorder.Answer = false;
  OfferResetAfterOverflow(model, overflow);
  EXPECT_EQ(model.X.Value, kept);
  EXPECT_EQ(recorder.Take(),
            Messages{"Error: An overflow occurred, posibly because the state equation solver "
                     "became unstable.\nThe model will be automatically stopped.  Also, it is "
                     "recommended that you reset the state variables.\n\nReset Variables?"
                     "\n\n(state \"x\")"});
  slope = 1.0;
  recorder.Answer = true;
  OfferResetAfterOverflow(model, overflow);
  EXPECT_EQ(model.X.Value, 0.0);
  EXPECT_EQ(model.Time(), keptTime);
  EXPECT_EQ(RunPass(model), PassResult::Running);
}

TEST_F(RunLoopTest, OtherExceptionsAreReported) {
  slope = -1.0;
  try {
    RunPass(model);
    FAIL() << "the exception did not reach the run loop";
  } catch (const std::exception& error) {
    ReportRunTimeError(error);
  }
  EXPECT_EQ(recorder.Take(),
            Messages{"Error: The following run-time error occurred:   no slope.\nThe model will "
                     "be automatically stopped."});
}

}  // namespace
}  // namespace torvane
