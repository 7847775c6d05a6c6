#include "core/constant.h"

#include <gtest/gtest.h>

#include <limits>

#include "core/bench.h"
#include "support/fake_instrument.h"
#include "support/recorder.h"

namespace torvane {
namespace {

using test::FakeInstrument;
using test::Messages;
using test::Recorder;

class ConstantTest : public testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(recorder.Take(), Messages{}); }

  int Undos() {
    int count = 0;
    for (; bench.History().CanUndo(); ++count) bench.History().Undo();
    return count;
  }

  Recorder recorder;
  ZelBenchTop bench;
  std::vector<std::string> log;
  Constant gain{bench, "KP", "", 1.2, 100.0, -10.0};
  Constant feedback{bench, "Feedback", {"Tach", "Encoder", "None"}, 1};
};

// The first evaluation hands every default to its block.
TEST_F(ConstantTest, ChangedFlagStartsSetAndReadsOnce) {
  for (Constant* constant : {&gain, &feedback}) {
    EXPECT_TRUE(constant->TakeChanged());
    EXPECT_FALSE(constant->TakeChanged());
  }
  gain.Set(2.0);
  EXPECT_TRUE(gain.TakeChanged());
  EXPECT_FALSE(gain.TakeChanged());
  EXPECT_FALSE(feedback.TakeChanged());
}

TEST_F(ConstantTest, LimitsComeInEitherOrderAndLimitTheValue) {
  EXPECT_EQ(gain.Lower(), -10.0);
  EXPECT_EQ(gain.Upper(), 100.0);
  gain.Set(101.0);
  EXPECT_EQ(gain.Value(), 100.0);
  gain.Set(std::numeric_limits<double>::infinity());  // at the limit already: no change
  gain.Set(std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ(gain.Value(), 100.0);
  gain.Set(-10.5);
  EXPECT_EQ(gain.Value(), -10.0);
  EXPECT_EQ(Undos(), 2);
  EXPECT_EQ(gain.Value(), 1.2);
}

TEST_F(ConstantTest, ValuesThatDoNotChangeTheConstantLeaveNoTrace) {
  gain.TakeChanged();
  gain.Set(1.2);
  gain.RestoreDefault();
  feedback.Set(1.0);
  EXPECT_FALSE(gain.TakeChanged());
  EXPECT_EQ(Undos(), 0);
}

TEST_F(ConstantTest, UndoAndRedoGiveTheValueToModelAndScopesAlike) {
  FakeInstrument scope(InstrumentKind::Scope, "scope", log);
  bench.AddInstrument(scope);
  gain.Set(1.0 / 3.0);
  feedback.Set(0.0);
  gain.TakeChanged();
  bench.History().Undo();
  EXPECT_EQ(feedback.DisplayText(), "Encoder");
  bench.History().Undo();
  EXPECT_EQ(gain.Value(), 1.2);
  EXPECT_TRUE(gain.TakeChanged());
  bench.History().Redo();
  bench.History().Redo();
  EXPECT_EQ(gain.Value(), 1.0 / 3.0);
  EXPECT_EQ(feedback.Choice(), 0);
  EXPECT_FALSE(bench.History().CanRedo());
  EXPECT_EQ(log, (std::vector<std::string>{"scope told of KP", "scope told of Feedback",
                                           "scope told of Feedback", "scope told of KP",
                                           "scope told of KP", "scope told of Feedback"}));
}

TEST_F(ConstantTest, TheHistoryNamesTheNewValue) {
  struct Items : UndoItems {
    void SetCaption(UndoItem item, const std::string& caption) override {
      if (item == UndoItem::UndoMenu) Undo = caption;
    }
    void SetEnabled(UndoItem, bool) override {}
    std::string Undo;
  } items;
  bench.History().Attach(&items);
  gain.Set(12.3456789);
  EXPECT_EQ(items.Undo, "Undo KP = 12.346");
  feedback.SetFromText("Tach");
  EXPECT_EQ(items.Undo, "Undo Feedback = Tach");
}

// Each way from 2, 0 and -2: down by 100, 20 and 4 per cent, up by 4, 20 and 100.
TEST_F(ConstantTest, StepsAlongTheNumberLineWhateverTheSign) {
  const struct {
    double From;
    double To[6];
  } cases[] = {{2.0, {1.0, 1.7, 1.94, 2.08, 2.5, 5.0}},
               {0.0, {-1.0, -0.1, -0.01, 0.1, 1.0, 10.0}},
               {-2.0, {-5.0, -2.5, -2.08, -1.94, -1.7, -1.0}}};
  for (const auto& [from, to] : cases) {
    for (int step = 0; step < 6; ++step) {
      gain.Set(from);
      gain.Step(static_cast<ConstantStep>(step));
      EXPECT_DOUBLE_EQ(gain.Value(), to[step]) << from << " by step " << step;
    }
  }
  gain.Set(6.0);
  gain.ChangeSign();
  EXPECT_EQ(gain.Value(), -6.0);
  gain.SetToZero();
  EXPECT_EQ(gain.Value(), 0.0);
  Constant frequency(bench, "F", "Hz", 5.0, 0.5, 6.0);
  frequency.SetToZero();
  EXPECT_EQ(frequency.Value(), 0.5);
}

TEST_F(ConstantTest, StepsEndAtTheLimitsAndLeaveNoTraceThere) {
  gain.Set(60.0);
  for (int press = 0; press < 3; ++press) gain.Step(ConstantStep::Up);
  EXPECT_EQ(gain.Value(), 100.0);
  EXPECT_FALSE(gain.CanStepUp());
  EXPECT_TRUE(gain.CanStepDown());
  EXPECT_EQ(Undos(), 2);
  using S = ConstantStep;
  const std::pair<S, int> walk[] = {{S::NudgeUp, 2},       {S::DinkyNudgeUp, 2}, {S::Down, 0},
                                    {S::NudgeDown, 0},     {S::DinkyNudgeUp, 1}, {S::Up, 2},
                                    {S::DinkyNudgeDown, 1}};
  for (const auto& [step, choice] : walk) {
    feedback.Step(step);
    feedback.ChangeSign();
    EXPECT_EQ(feedback.Choice(), choice);
    EXPECT_EQ(feedback.CanStepUp(), choice < 2);
    EXPECT_EQ(feedback.CanStepDown(), choice > 0);
  }
}

TEST_F(ConstantTest, ObserversAreToldOfEveryChange) {
  struct Observer : ConstantObserver {
    void ConstantChanged(const Constant& constant) override { Seen.push_back(constant.Value()); }
    std::vector<double> Seen;
  } observer;
  gain.Observe(observer);
  gain.Set(3.0);
  gain.Set(3.0);
  bench.History().Undo();
  gain.Unobserve(observer);
  gain.Set(4.0);
  EXPECT_EQ(observer.Seen, (std::vector<double>{3.0, 1.2}));
}

TEST_F(ConstantTest, ReadsAndWritesText) {
  EXPECT_TRUE(gain.SetFromText(" 0.1234567 "));
  EXPECT_EQ(gain.DisplayText(), "0.12346");
  EXPECT_EQ(gain.FileText(), "0.1234567");
  EXPECT_TRUE(gain.SetFromText("1e9"));
  EXPECT_EQ(gain.Value(), 100.0);
  EXPECT_FALSE(gain.SetFromText("1,5"));
  EXPECT_EQ(gain.Value(), 100.0);
  EXPECT_EQ(recorder.Take(), Messages{"Message Box: Cannot convert \"1,5\" to a Number"});
}

TEST_F(ConstantTest, AListTakesItsChoicesOnly) {
  EXPECT_EQ(feedback.Choice(), 1);
  EXPECT_TRUE(feedback.SetFromText("None"));
  EXPECT_EQ(feedback.Choice(), 2);
  EXPECT_EQ(feedback.FileText(), "None");
  feedback.Set(7.0);
  EXPECT_EQ(feedback.Choice(), 2);
  feedback.Set(-1.0);
  EXPECT_EQ(feedback.Choice(), 0);
  for (const std::string text : {"tach", "1", ""}) {
    EXPECT_FALSE(feedback.SetFromText(text));
    EXPECT_EQ(recorder.Take(),
              Messages{"Error: \"" + text +
                       "\" is not a valid selection for \"Feedback\". \n(Note:  you can "
                       "double-click on the grid at the \nright of \"Feedback\" and use adjust "
                       "buttons.)"});
  }
  EXPECT_EQ(feedback.DisplayText(), "Tach");
  feedback.RestoreDefault();
  EXPECT_EQ(feedback.Choice(), 1);
}

}  // namespace
}  // namespace torvane
