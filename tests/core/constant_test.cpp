#include "core/constant.h"

#include <gtest/gtest.h>

#include <cmath>

#include "core/bench.h"
#include "support/recorder.h"

namespace torvane {
namespace {

using test::Messages;
using Log = std::vector<std::string>;

class ConstantTest : public testing::Test, protected ConstantObserver, protected UndoItems {
 protected:
  ConstantTest() {
    bench.History().Attach(this);
    gain.Observe(*this);
    feedback.Observe(*this);
  }
  void TearDown() override { EXPECT_EQ(recorder.Take(), Messages{}); }

  void ConstantChanged(const Constant& constant) override { told.push_back(constant.FileText()); }
  void SetCaption(UndoItem item, const std::string& text) override {
    if (item == UndoItem::UndoMenu) caption = text;
  }
  void SetEnabled(UndoItem, bool) override {}

  test::Recorder recorder;
  std::string caption;
  Log told;
  ZelBenchTop bench;
  Constant gain{bench, "KP", "", 1.2, 100.0, -10.0};
  Constant feedback{bench, "Feedback", {"Tach", "Encoder", "None"}, 1};
};

// The changed flag starts set: the first evaluation hands every default to its block.
TEST_F(ConstantTest, AChangeIsLimitedFlaggedRecordedAndTold) {
  const double nan = std::nan("");
  // `Undo` is what the menu offers then; nothing where nothing changed, as at a limit.
  const struct {
    Constant& Of;
    double From, To;
    const char* Undo;
  } changes[] = {{gain, 1.2, 1.2, ""},
                 {gain, 101.0, 100.0, "Undo KP = 100"},
                 {gain, HUGE_VAL, 100, ""},
                 {gain, nan, 100.0, ""},
                 {gain, -10.5, -10.0, "Undo KP = -10"},
                 {gain, 12.3456789, 12.3456789, "Undo KP = 12.346"},
                 {feedback, 1.9, 1, ""},
                 {feedback, 7.0, 2, "Undo Feedback = None"},
                 {feedback, -1.0, 0, "Undo Feedback = Tach"}};
  for (const auto& [of, from, to, undo] : changes) {
    of.TakeChanged();
    told.clear();
    of.Set(from);
    EXPECT_EQ(of.Value(), to) << from;
    const bool changed = *undo != '\0';
    EXPECT_EQ(of.TakeChanged(), changed) << from;
    EXPECT_FALSE(of.TakeChanged());
    EXPECT_EQ(told, changed ? Log{of.FileText()} : Log{});
    EXPECT_EQ(caption, changed ? undo : caption);
  }
  const double undone[] = {2.0, 1.0, -10.0, 100.0, 1.2};  // feedback twice, then the gain
  for (std::size_t i = 0; i < 5; ++i) {
    Constant& of = i < 2 ? feedback : gain;
    bench.History().Undo();
    EXPECT_EQ(of.Value(), undone[i]);
    EXPECT_TRUE(of.TakeChanged());
  }
  EXPECT_FALSE(bench.History().CanUndo());
  while (bench.History().CanRedo()) bench.History().Redo();
  EXPECT_EQ(gain.Value(), 12.3456789);
  EXPECT_EQ(feedback.Choice(), 0);
  gain.Unobserve(*this);
  told.clear();
  gain.RestoreDefault();
  feedback.RestoreDefault();
  EXPECT_EQ(gain.Value(), 1.2);
  EXPECT_EQ(told, Log{"Encoder"});
  EXPECT_TRUE(Constant(bench, "fresh", "", 1.0, 0.0, 2.0).TakeChanged());
}

// A drag is one step to undo, and none when it ends where it began.
TEST_F(ConstantTest, AGestureIsOneChange) {
  for (Constant* constant : {&gain, &feedback}) {
    const double before = constant->Value();
    const auto drag = [&](double end) {
      bench.History().BeginGesture();
      for (const double value : {0.0, 1.0, end}) constant->Set(value);
      bench.History().EndGesture();
    };
    drag(before);
    EXPECT_FALSE(bench.History().CanUndo());
    drag(2.0);
    EXPECT_EQ(caption, "Undo " + constant->Name() + " = " + constant->DisplayText());
    bench.History().Undo();
    EXPECT_EQ(constant->Value(), before);
    bench.History().Redo();
    EXPECT_EQ(constant->Value(), 2.0);
    bench.History().Undo();
  }
}

TEST_F(ConstantTest, StepsAlongTheNumberLineWhateverTheSign) {
  // Down by 100, 20 and 4 per cent, up by 4, 20 and 100.
  const struct {
    Constant& Of;
    double From;
    double To[6];
  } cases[] = {{gain, 2.0, {1.0, 1.7, 1.94, 2.08, 2.5, 5.0}},
               {gain, 0.0, {-1.0, -0.1, -0.01, 0.1, 1.0, 10.0}},  // shares of the limits
               {gain, -2.0, {-5.0, -2.5, -2.08, -1.94, -1.7, -1.0}},
               {gain, 100.0, {50.0, 85.0, 97.0, 100.0, 100.0, 100.0}},
               {gain, -10.0, {-10.0, -10.0, -10.0, -9.7, -8.5, -5.0}},
               {feedback, 0, {0, 0, 0, 1, 1, 2}},
               {feedback, 1, {0, 0, 0, 2, 2, 2}},
               {feedback, 2, {0, 1, 1, 2, 2, 2}}};
  for (const auto& [of, from, to] : cases) {
    for (int step = 0; step < 6; ++step) {
      of.Set(from);
      EXPECT_EQ(of.CanStepUp(), from != to[5]) << from;
      EXPECT_EQ(of.CanStepDown(), from != to[0]) << from;
      of.Step(static_cast<ConstantStep>(step));
      EXPECT_DOUBLE_EQ(of.Value(), to[step]) << from << " by step " << step;
    }
  }
  gain.Set(6.0);
  gain.ChangeSign();
  EXPECT_EQ(gain.Value(), -6.0);
  gain.SetToZero();
  EXPECT_EQ(gain.Value(), 0.0);
  feedback.Set(1.0);
  feedback.ChangeSign();
  EXPECT_EQ(feedback.Choice(), 1);
  Constant frequency(bench, "F", "Hz", 5.0, 0.5, 6.0);
  frequency.SetToZero();
  EXPECT_EQ(frequency.Value(), 0.5);
  EXPECT_TRUE(Constant(bench, "fixed", "", 1.0, 1.0, 1.0).CanStepDown());
}

TEST_F(ConstantTest, ReadsAndWritesText) {
  EXPECT_TRUE(gain.SetFromText(" 0.1234567 "));
  EXPECT_EQ(gain.DisplayText(), "0.12346");
  EXPECT_EQ(gain.FileText(), "0.1234567");
  EXPECT_FALSE(gain.SetFromText("1,5", " in line 3"));
  EXPECT_EQ(gain.Value(), 0.1234567);
  EXPECT_EQ(recorder.Take(), Messages{"Message Box: Cannot convert \"1,5\" to a Number in line 3"});
  EXPECT_TRUE(feedback.SetFromText("None"));
  EXPECT_EQ(feedback.FileText(), "None");
  for (const std::string text : {"tach", "1", ""}) {
    EXPECT_FALSE(feedback.SetFromText(text, "!"));
    EXPECT_EQ(recorder.Take(),
              Messages{"Error: \"" + text +
                       "\" is not a valid selection for \"Feedback\". \n(Note:  you can "
                       "double-click on the grid at the \nright of \"Feedback\" and use adjust "
                       "buttons.)!"});
  }
  EXPECT_EQ(feedback.DisplayText(), "None");
}

}  // namespace
}  // namespace torvane
