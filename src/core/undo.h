#pragma once

#include <array>
#include <cstdint>
#include <set>
#include <string>
#include <variant>

namespace torvane {

struct UndoEntry;

/// Something whose changes can be taken back. It reads what it needs from the entry that it pushed.
class Undoable {
 public:
  virtual ~Undoable() = default;
  virtual void Undo(const UndoEntry& entry) = 0;
  virtual void Redo(const UndoEntry& entry) = 0;

  /// What became of a change that followed another one of the same target within a gesture.
  enum class Merged {
    No,       ///< it is a change of its own
    Yes,      ///< the earlier entry now stands for both
    Nothing,  ///< together they change nothing
  };
  virtual Merged Merge(UndoEntry& /*earlier*/, const UndoEntry& /*later*/) const {
    return Merged::No;
  }
};

/// From one number to another.
struct NumberChange {
  double Before = 0.0;
  double After = 0.0;
};

/// The records in which a state differed from what it became.
struct RecordsChange {
  std::string Before;
  std::string After;
};

/// One reversible change, of the kind that its target makes. The target is not owned and must
/// outlive the history.
struct UndoEntry {
  Undoable* Target = nullptr;
  std::string Description;  ///< shown as "Undo " + Description and "Redo " + Description
  std::variant<NumberChange, RecordsChange> What;
};

/// The user-interface items that a history drives.
enum class UndoItem { UndoMenu, RedoMenu, UndoButton, RedoButton };

/// Where a history shows what can be undone and redone.
class UndoItems {
 public:
  virtual ~UndoItems() = default;
  virtual void SetCaption(UndoItem item, const std::string& caption) = 0;
  virtual void SetEnabled(UndoItem item, bool enabled) = 0;
};

/// History of the user's last 50 changes to one model.
///
/// Undo and Redo trust their caller: only the disabled items keep them from being called with
/// nothing to undo or redo.
class ZelUndo {
 public:
  static constexpr std::int32_t Depth = 50;

  /// Attaches the items to drive and brings them up to date; nullptr detaches.
  void Attach(UndoItems* items);

  /// Records a change that has just been made; the redo chain is forgotten and, when the history is
  /// full, the oldest change too.
  void Push(UndoEntry entry);
  void Undo();
  void Redo();

  /// Changes that follow are not recorded, until as many calls of Resume.
  void Suspend() { ++suspended_; }
  /// Changes are recorded again. Earlier entries of the targets that changed meanwhile are
  /// forgotten: their steps lead from values that are no more.
  void Resume();
  bool Suspended() const { return suspended_ > 0; }

  /// Until EndGesture, the changes of one target in a row are one entry where the target can merge
  /// them: a held button, a drag, a turn of the wheel.
  void BeginGesture();
  void EndGesture() { gestureStart_ = NoGesture; }

  /// Whether there are entries of the target.
  bool Holds(const Undoable& target) const;
  /// The target's entries go; the others stay in their order.
  void Forget(const Undoable& target);
  void Clear();

  bool CanUndo() const { return current_ >= 0; }
  bool CanRedo() const { return current_ < top_; }

 private:
  static constexpr std::int32_t NoGesture = Depth + 1;  // beyond every entry

  bool MergeIntoCurrent(const UndoEntry& entry);
  void DropOldest();
  void ShowUndo();
  void ShowRedo(bool available);
  void SetItems(UndoItem menu, UndoItem button, const std::string& caption, bool enabled);

  std::int32_t current_ = -1;
  std::int32_t top_ = -1;
  std::array<UndoEntry, Depth> entries_;
  UndoItems* items_ = nullptr;
  int suspended_ = 0;
  std::set<const Undoable*> missed_;  // targets that changed while suspended
  std::int32_t gestureStart_ = NoGesture;
};

}  // namespace torvane
