#include "core/undo.h"

#include <gtest/gtest.h>

#include <map>

#include "support/recorder.h"

namespace torvane {
namespace {

using test::Messages;
using test::Recorder;

/// The four items as the main window would show them.
class FakeItems : public UndoItems {
 public:
  void SetCaption(UndoItem item, const std::string& caption) override { captions_[item] = caption; }
  void SetEnabled(UndoItem item, bool enabled) override { enabled_[item] = enabled; }

  std::string Undo() const { return Show(UndoItem::UndoMenu, UndoItem::UndoButton); }
  std::string Redo() const { return Show(UndoItem::RedoMenu, UndoItem::RedoButton); }

 private:
  std::string Show(UndoItem menu, UndoItem button) const {
    EXPECT_EQ(captions_.count(button), 0u) << "a button has no caption";
    EXPECT_EQ(enabled_.at(menu), enabled_.at(button));
    return captions_.at(menu) + (enabled_.at(menu) ? "" : " (disabled)");
  }

  std::map<UndoItem, std::string> captions_;
  std::map<UndoItem, bool> enabled_;
};

/// A number whose changes can be taken back.
class Dial : public Undoable {
 public:
  explicit Dial(ZelUndo& history) : history_(history) {}

  void Turn(int value) {
    UndoEntry entry;
    entry.Target = this;
    entry.Description = std::to_string(value);
    entry.Ints = {Value, value, 0, 0};
    Value = value;
    history_.Push(entry);
  }
  void Undo(const UndoEntry& entry) override { Value = entry.Ints[0]; }
  void Redo(const UndoEntry& entry) override { Value = entry.Ints[1]; }
  Merged Merge(UndoEntry& earlier, const UndoEntry& later) const override {
    earlier.Ints[1] = later.Ints[1];
    earlier.Description = later.Description;
    return earlier.Ints[0] == earlier.Ints[1] ? Merged::Nothing : Merged::Yes;
  }

  int Value = 0;

 private:
  ZelUndo& history_;
};

class UndoTest : public testing::Test {
 protected:
  void SetUp() override { history.Attach(&items); }
  void TearDown() override { EXPECT_EQ(recorder.Take(), Messages{}); }

  Recorder recorder;
  FakeItems items;
  ZelUndo history;
  Dial dial{history};
};

TEST_F(UndoTest, StepsBackAndForthAndNamesTheNextStep) {
  EXPECT_EQ(items.Undo(), "Undo (disabled)");
  EXPECT_EQ(items.Redo(), "Redo (disabled)");
  dial.Turn(1);
  dial.Turn(2);
  EXPECT_EQ(items.Undo(), "Undo 2");
  EXPECT_EQ(items.Redo(), "Redo (disabled)");

  history.Undo();
  EXPECT_EQ(dial.Value, 1);
  EXPECT_EQ(items.Undo(), "Undo 1");
  EXPECT_EQ(items.Redo(), "Redo 2");
  history.Undo();
  EXPECT_EQ(dial.Value, 0);
  EXPECT_EQ(items.Undo(), "Undo (disabled)");
  EXPECT_EQ(items.Redo(), "Redo 1");

  history.Redo();
  EXPECT_EQ(dial.Value, 1);
  EXPECT_EQ(items.Undo(), "Undo 1");
  EXPECT_EQ(items.Redo(), "Redo 2");
  history.Redo();
  EXPECT_EQ(dial.Value, 2);
  EXPECT_EQ(items.Undo(), "Undo 2");
  EXPECT_EQ(items.Redo(), "Redo (disabled)");
  EXPECT_FALSE(history.CanRedo());
}

TEST_F(UndoTest, ANewChangeForgetsWhatCouldBeRedone) {
  for (int value = 1; value <= 3; ++value) dial.Turn(value);
  history.Undo();
  history.Undo();
  dial.Turn(9);
  EXPECT_EQ(items.Undo(), "Undo 9");
  EXPECT_EQ(items.Redo(), "Redo (disabled)");
  EXPECT_FALSE(history.CanRedo());
  history.Undo();
  EXPECT_EQ(dial.Value, 1);
  history.Redo();
  EXPECT_EQ(dial.Value, 9);
  EXPECT_EQ(items.Redo(), "Redo (disabled)");
}

TEST_F(UndoTest, KeepsTheFiftyNewestChanges) {
  for (int value = 1; value <= 52; ++value) dial.Turn(value);
  int undone = 0;
  for (; history.CanUndo(); ++undone) history.Undo();
  EXPECT_EQ(undone, 50);
  EXPECT_EQ(dial.Value, 2);
  EXPECT_EQ(items.Redo(), "Redo 3");
  while (history.CanRedo()) history.Redo();
  EXPECT_EQ(dial.Value, 52);
  EXPECT_EQ(items.Redo(), "Redo (disabled)");
}

// The disabled items are what keeps a redo with nothing to redo away; the history does not ask.
TEST_F(UndoTest, RedoTrustsItsCaller) {
  dial.Turn(1);
  dial.Turn(2);
  history.Undo();
  history.Undo();
  dial.Turn(5);
  history.Redo();
  EXPECT_EQ(dial.Value, 2);
}

TEST_F(UndoTest, StepsOutsideTheHistoryAreFatal) {
  history.Undo();
  EXPECT_TRUE(recorder.Ended);
  EXPECT_EQ(recorder.Take(), Messages{"Fatal Error: Fatal Error 3 in ZelUndo"});
  for (int value = 1; value <= 50; ++value) dial.Turn(value);
  history.Redo();
  EXPECT_EQ(recorder.Take(), Messages{"Fatal Error: Fatal Error 2 in ZelUndo"});
  EXPECT_EQ(dial.Value, 50);
}

TEST_F(UndoTest, AGestureIsOneEntryUnlessItComesBackToItsStart) {
  dial.Turn(1);
  const auto gesture = [&](std::initializer_list<int> values) {
    history.BeginGesture();
    for (const int value : values) dial.Turn(value);
    history.EndGesture();
  };
  gesture({2, 3, 4});
  EXPECT_EQ(items.Undo(), "Undo 4");
  gesture({7, 4});
  history.Undo();
  EXPECT_EQ(dial.Value, 1);
  EXPECT_EQ(items.Redo(), "Redo 4");
  // A full history drops its oldest entry for the gesture's first change only.
  for (int value = 10; value < 60; ++value) dial.Turn(value);
  gesture({60, 61, 62});
  int undone = 0;
  for (; history.CanUndo(); ++undone) history.Undo();
  EXPECT_EQ(undone, 50);
  EXPECT_EQ(dial.Value, 10);
}

TEST_F(UndoTest, ForgetsTheEntriesOfATargetAlone) {
  Dial other(history);
  const auto fill = [&] {
    history.Clear();
    for (const int value : {1, 2, 3}) {
      dial.Turn(value);
      other.Turn(10 * value);
    }
    history.Undo();
    history.Undo();  // both third turns are to be redone
  };
  fill();
  history.Forget(other);
  EXPECT_EQ(items.Undo(), "Undo 2");
  EXPECT_EQ(items.Redo(), "Redo 3");
  // What changes while the history does not record loses its entries; the rest keeps them.
  fill();
  history.Suspend();
  dial.Turn(100);
  history.Resume();
  EXPECT_EQ(items.Undo(), "Undo 20");
  EXPECT_EQ(items.Redo(), "Redo 30");
}

TEST_F(UndoTest, ItemsAttachedLaterAreBroughtUpToDate) {
  dial.Turn(1);
  dial.Turn(2);
  history.Undo();
  FakeItems others;
  history.Attach(&others);
  EXPECT_EQ(others.Undo(), "Undo 1");
  EXPECT_EQ(others.Redo(), "Redo 2");
  history.Attach(nullptr);
  history.Undo();
  EXPECT_EQ(others.Undo(), "Undo 1");
}

}  // namespace
}  // namespace torvane
