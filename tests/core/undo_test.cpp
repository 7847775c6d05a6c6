#include "core/undo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "support/recorder.h"

namespace torvane {
namespace {

using test::Messages;

/// The items as the main window would show them.
struct FakeItems : UndoItems {
  void SetCaption(UndoItem item, const std::string& caption) override { Captions[item] = caption; }
  void SetEnabled(UndoItem item, bool enabled) override { Enabled[item] = enabled; }

  std::map<UndoItem, std::string> Captions;
  std::map<UndoItem, bool> Enabled;
};

/// A number whose changes can be taken back.
struct Dial : Undoable {
  Dial(ZelUndo& history, bool merges) : History(history), Merges(merges) {}

  void Turn(int value) {
    const NumberChange change{static_cast<double>(Value), static_cast<double>(value)};
    Value = value;
    History.Push({this, std::to_string(value), change});
  }
  void Undo(const UndoEntry& entry) override { Value = static_cast<int>(At(entry).Before); }
  void Redo(const UndoEntry& entry) override { Value = static_cast<int>(At(entry).After); }
  Merged Merge(UndoEntry& earlier, const UndoEntry& later) const override {
    if (!Merges) return Undoable::Merge(earlier, later);
    auto& change = std::get<NumberChange>(earlier.What);
    change.After = std::get<NumberChange>(later.What).After;
    earlier.Description = later.Description;
    return change.Before == change.After ? Merged::Nothing : Merged::Yes;
  }

  static const NumberChange& At(const UndoEntry& entry) {
    return std::get<NumberChange>(entry.What);
  }

  ZelUndo& History;
  const bool Merges;
  int Value = 0;
};

/// What a history does, as plain lists of changes.
struct PlainHistory {
  struct Change {
    Dial* Target;
    int From, To;
  };
  using Changes = std::vector<Change>;

  void Turn(Dial& dial, int value) {
    Undone.clear();
    if (Done.size() > GestureStart && Done.back().Target == &dial && dial.Merges) {
      Done.back().To = value;
      if (Done.back().From == value) Done.pop_back();
      return;
    }
    Done.push_back({&dial, dial.Value, value});
    if (Done.size() <= ZelUndo::Depth) return;
    Done.erase(Done.begin());
    if (GestureStart != NoGesture) --GestureStart;
  }
  Change Step(Changes& from, Changes& to) {
    GestureStart = NoGesture;
    to.push_back(from.back());
    from.pop_back();
    return to.back();
  }
  void Forget(const Dial& dial) {
    GestureStart = NoGesture;
    for (Changes* list : {&Done, &Undone}) {
      std::erase_if(*list, [&](const Change& change) { return change.Target == &dial; });
    }
  }
  bool Holds(const Dial& dial) const {
    const auto is = [&](const Change& change) { return change.Target == &dial; };
    return std::any_of(Done.begin(), Done.end(), is) ||
           std::any_of(Undone.begin(), Undone.end(), is);
  }
  static std::string Caption(const std::string& step, const Changes& changes) {
    return changes.empty() ? step : step + " " + std::to_string(changes.back().To);
  }

  static constexpr std::size_t NoGesture = 1000;
  Changes Done, Undone;
  std::size_t GestureStart = NoGesture;
};

TEST(Undo, AWalkAtRandomIsThatOfAPlainList) {
  test::Recorder recorder;
  ZelUndo history;
  PlainHistory plain;
  FakeItems items;
  history.Attach(&items);
  Dial dials[] = {{history, true}, {history, false}};
  std::minstd_rand random;
  std::size_t longest = 0;
  for (int step = 0; step < 8000; ++step) {
    Dial& dial = dials[random() % 2];
    const int value = static_cast<int>(random() % 5);
    const auto what = random() % 1000;
    if (what < 3) {
      history.Forget(dial);
      plain.Forget(dial);
    } else if (what < 6) {  // what changes unrecorded loses its entries
      history.Suspend();
      history.Suspend();
      dial.Turn(value);
      history.Resume();
      EXPECT_TRUE(history.Suspended());
      history.Resume();
      plain.Forget(dial);
    } else if (what == 6) {
      history.Clear();
      plain = {};
    } else if (what < 100) {
      history.BeginGesture();
      plain.GestureStart = plain.Done.size();
    } else if (what < 110) {  // items that come late are brought up to date
      history.Attach(nullptr);
      items = {};
      history.Attach(&items);
    } else if (what < 150) {
      history.EndGesture();
      plain.GestureStart = PlainHistory::NoGesture;
    } else if (what < (step / 400 % 2 == 0 ? 350 : 650) && history.CanUndo()) {  // also to the end
      history.Undo();
      const auto undone = plain.Step(plain.Done, plain.Undone);
      EXPECT_EQ(undone.Target->Value, undone.From);
    } else if (what < 800 && what % 4 == 0 && history.CanRedo()) {
      history.Redo();
      const auto redone = plain.Step(plain.Undone, plain.Done);
      EXPECT_EQ(redone.Target->Value, redone.To);
    } else if (value != dial.Value) {
      plain.Turn(dial, value);
      dial.Turn(value);
    }
    const bool undo = !plain.Done.empty();
    const bool redo = !plain.Undone.empty();
    using enum UndoItem;
    ASSERT_EQ(items.Captions[UndoMenu], PlainHistory::Caption("Undo", plain.Done)) << step;
    ASSERT_EQ(items.Captions[RedoMenu], PlainHistory::Caption("Redo", plain.Undone)) << step;
    ASSERT_TRUE(items.Enabled[UndoMenu] == undo && items.Enabled[UndoButton] == undo) << step;
    ASSERT_TRUE(items.Enabled[RedoMenu] == redo && items.Enabled[RedoButton] == redo) << step;
    ASSERT_TRUE(history.CanUndo() == undo && history.CanRedo() == redo) << step;
    ASSERT_EQ(history.Holds(dials[0]), plain.Holds(dials[0])) << step;
    longest = std::max(longest, plain.Done.size());
  }
  EXPECT_EQ(items.Captions.size(), 2U) << "a button has no caption";
  EXPECT_EQ(longest, 50U) << "the walk never filled the history";
  EXPECT_EQ(recorder.Take(), Messages{});
}

// The disabled items are what keeps a redo with nothing to redo away; the history does not ask.
TEST(Undo, RedoTrustsItsCallerWithinTheHistory) {
  test::Recorder recorder;
  ZelUndo history;
  Dial dial(history, false);
  history.Undo();
  for (int value = 1; value <= ZelUndo::Depth; ++value) dial.Turn(value);
  history.Redo();
  EXPECT_EQ(recorder.Take(), (Messages{"Fatal Error: Fatal Error 3 in ZelUndo",
                                       "Fatal Error: Fatal Error 2 in ZelUndo"}));
  history.Undo();
  history.Undo();
  dial.Turn(5);
  history.Redo();
  EXPECT_EQ(dial.Value, 50);
}

}  // namespace
}  // namespace torvane
