#include "core/model.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "core/constant.h"
#include "core/run_loop.h"
#include "support/fake_instrument.h"
#include "support/one_state_model.h"
#include "support/recorder.h"

namespace torvane {
namespace {

using test::FakeInstrument;
using test::Messages;
using test::OneStateModel;
using Log = std::vector<std::string>;

TEST(Model, ResetLeavesTimeAndFirstVariableAndEvaluatesOnceAtMinusOne) {
  std::vector<std::pair<double, double>> seen;
  OneStateModel model(0.5, 2.0, [&](double t, double x) {
    seen.emplace_back(t, x);
    return 1.0;
  });
  Variable second(model.Bench(), "second", "");
  model.Solver().RunUntil(3.0);
  for (const bool everything : {false, true}) {
    model.First.Value = 5.0;
    second.Value = 6.0;
    model.X.Value = 7.0;
    seen.clear();
    everything ? model.ResetEverything() : model.Reset();
    // The walk over the variables starts at the second one, unless everything goes.
    EXPECT_EQ(model.First.Value, everything ? 0.0 : 5.0);
    EXPECT_EQ(second.Value, 0.0);
    EXPECT_EQ(model.X.Value, 2.0);
    EXPECT_EQ(model.Time(), 3.0);
    EXPECT_EQ(seen, (std::vector<std::pair<double, double>>{{-1.0, 2.0}}));
  }
}

TEST(Model, AStateThatIsTheFirstVariableIsResetAndABaseThatCannotBeBuiltIsFatal) {
  struct StateFirst : ZelModel {
    explicit StateFirst(int maxOrder) : ZelModel("State first", 0.5, maxOrder) {}
    void Derivatives(double) override {}
    TimeVariable T{Bench(), "Time", "sec", {}};
    StateVariable X{Bench(), "x", "", 4.0};
  };
  StateFirst model(1);
  model.X.Value = 5.0;
  model.Reset();
  EXPECT_EQ(model.X.Value, 4.0);
  test::Recorder reports;
  EXPECT_THROW(StateFirst(-1), std::exception);
  EXPECT_EQ(reports.Take(), Messages{"Fatal Error: Fault in ZelModel :: ZelModel"});
}

struct Watch : ConstantObserver {
  void ConstantChanged(const Constant& constant) override { Told.push_back(constant.Name()); }
  std::vector<std::string> Told;
};

TEST(Model, DefaultsComeBackAndObserversAreToldOfEachConstant) {
  OneStateModel model(0.25, 0.0, [](double, double) { return 0.0; });
  Constant gain(model.Bench(), "KP", "", 1.0, 0.0, 10.0);
  gain.Set(5.0);
  Watch watch;
  gain.Observe(watch);
  model.RestoreDefaults();
  EXPECT_EQ(gain.Value(), 1.0);
  EXPECT_EQ(watch.Told, (std::vector<std::string>{"KP"}));
  model.Bench().History().Undo();
  EXPECT_EQ(gain.Value(), 5.0);
}

/// A model with a scope that asks for every step.
class RunLoop : public testing::Test {
 protected:
  struct EveryStep : FakeInstrument {
    explicit EveryStep(Log& log) : FakeInstrument(InstrumentKind::Scope, "scope", log) {}
    double NextTime() const override { return static_cast<double>(ServicedAt.size() + 1) * 0.25; }
  };

  RunLoop() { model.Bench().AddInstrument(scope); }

  Log log;
  EveryStep scope{log};
  double slope = 1.0;
  OneStateModel model{0.25, 0.0, [this](double, double) { return slope; }};
  test::Recorder recorder;
};

TEST_F(RunLoop, APassIsTwentyFiveChunksUnlessAnInstrumentStopsIt) {
  EXPECT_EQ(RunPass(model), PassResult::Running);
  EXPECT_EQ(scope.ServicedAt.size(), 25U);
  EXPECT_EQ(model.Time(), 25 * 0.25);
  scope.StopsAtService = 27;
  EXPECT_TRUE(model.RunChunk());
  EXPECT_EQ(RunPass(model), PassResult::Stopped);
  EXPECT_EQ(scope.ServicedAt.back(), 27 * 0.25);
  test::OnTime work(model.Bench(), [this](double t) { scope.IsBusy = t >= 8.0; });
  EXPECT_EQ(RunPass(model), PassResult::Paused);
  EXPECT_EQ(model.Time(), 8.0);
  EXPECT_EQ(RunPass(model), PassResult::Paused);
  EXPECT_EQ(model.Time(), 8.0);
}

// A chunk of years, cut again and again, steps as one that runs through.
TEST_F(RunLoop, APassEndsWithinAChunkWhenItsTimeIsUp) {
  const auto equation = [](double t, double x) { return t * 1e-3 - 0.1 * x; };
  OneStateModel cut{0.25, 0.0, equation};
  int looks = 0;
  for (int pass = 1; cut.Time() < 3000.0; ++pass) {
    const double until = cut.Time() + pass % 100;
    const auto timeUp = [&] { return ++looks % 2 == 0; };
    EXPECT_EQ(RunPass(cut, timeUp, until), PassResult::Running);
    EXPECT_LE(cut.Time(), until);
  }
  EXPECT_LT(cut.Time(), 3200.0);
  OneStateModel whole{0.25, 0.0, equation};
  whole.Solver().RunUntil(cut.Time());
  EXPECT_EQ(cut.X.Value, whole.X.Value);
}

TEST_F(RunLoop, AnOverflowOffersToResetTheStates) {
  slope = 1e308;
  EXPECT_THROW(RunPass(model), SolverOverflow);
  const SolverOverflow overflow("state \"x\"");
  const double keptTime = model.Time();
  const double kept = model.X.Value;
  recorder.Answer = false;
  OfferResetAfterOverflow(model, overflow);
  EXPECT_EQ(model.X.Value, kept);
  slope = 1.0;
  recorder.Answer = true;
  OfferResetAfterOverflow(model, overflow);
  EXPECT_EQ(model.X.Value, 0.0);
  EXPECT_EQ(model.Time(), keptTime);
  EXPECT_EQ(RunPass(model), PassResult::Running);
  ReportRunTimeError(std::runtime_error("no slope"));
  const std::string offer =
      "Error: An overflow occurred, posibly because the state equation solver became unstable.\n"
      "The model will be automatically stopped.  Also, it is recommended that you reset the state "
      "variables.\n\nReset Variables?\n\n(state \"x\")";
  EXPECT_EQ(recorder.Take(),
            (Messages{offer, offer,
                      "Error: The following run-time error occurred:   no slope.\nThe model will "
                      "be automatically stopped."}));
}

}  // namespace
}  // namespace torvane
