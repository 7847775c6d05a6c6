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
  EXPECT_FALSE(bench.ConstantsChanged());
  for (Constant* constant : {&gain, &feedback}) {
    EXPECT_TRUE(constant->TakeChanged());
    EXPECT_FALSE(constant->TakeChanged());
  }
  gain.Set(2.0);
  EXPECT_TRUE(bench.ConstantsChanged());
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
  EXPECT_FALSE(bench.ConstantsChanged());
  EXPECT_EQ(Undos(), 0);
}

TEST_F(ConstantTest, UndoAndRedoGiveTheValueToModelAndScopesAlike) {
  FakeInstrument scope(InstrumentKind::Scope, "scope", log);
  bench.AddInstrument(scope);
  gain.Set(1.0 / 3.0);
  feedback.Set(0.0);
  gain.TakeChanged();
  bench.SetConstantsChanged(false);
  bench.History().Undo();
  EXPECT_EQ(feedback.DisplayText(), "Encoder");
  bench.History().Undo();
  EXPECT_EQ(gain.Value(), 1.2);
  EXPECT_TRUE(gain.TakeChanged());
  EXPECT_TRUE(bench.ConstantsChanged());
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
