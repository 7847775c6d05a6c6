#include "core/undo.h"

#include <algorithm>
#include <utility>

#include "core/messages.h"

namespace torvane {

void ZelUndo::Attach(UndoItems* items) {
  items_ = items;
  ShowUndo();
  ShowRedo(CanRedo());
}

void ZelUndo::Push(UndoEntry entry) {
  if (suspended_ > 0) {
    missed_.insert(entry.Target);
    return;
  }
  if (current_ >= Depth) {
    FatalError("Fatal Error 1 in ZelUndo");
    return;
  }
  if (MergeIntoCurrent(entry)) return;
  if (current_ == Depth - 1) DropOldest();
  ++current_;
  entries_[current_] = std::move(entry);
  ShowUndo();
  top_ = current_;
  ShowRedo(false);
}

// Within a gesture the entry of its last change is always the newest one.
bool ZelUndo::MergeIntoCurrent(const UndoEntry& entry) {
  if (current_ < gestureStart_ || entries_[current_].Target != entry.Target) return false;
  switch (entry.Target->Merge(entries_[current_], entry)) {
    case Undoable::Merged::No:
      return false;
    case Undoable::Merged::Nothing:
      --current_;
      break;
    case Undoable::Merged::Yes:
      break;
  }
  top_ = current_;
  ShowUndo();
  return true;
}

void ZelUndo::BeginGesture() {
  gestureStart_ = current_ + 1;
}

void ZelUndo::Resume() {
  if (--suspended_ > 0) return;
  for (const Undoable* target : std::exchange(missed_, {})) Forget(*target);
}

bool ZelUndo::Holds(const Undoable& target) const {
  return std::any_of(entries_.begin(), entries_.begin() + top_ + 1,
                     [&](const UndoEntry& entry) { return entry.Target == &target; });
}

void ZelUndo::Forget(const Undoable& target) {
  std::int32_t kept = 0;
  std::int32_t current = -1;
  for (std::int32_t i = 0; i <= top_; ++i) {
    if (entries_[i].Target == &target) continue;
    if (i <= current_) current = kept;
    if (i != kept) entries_[kept] = std::move(entries_[i]);
    ++kept;
  }
  current_ = current;
  top_ = kept - 1;
  EndGesture();
  ShowUndo();
  ShowRedo(CanRedo());
}

void ZelUndo::Clear() {
  current_ = top_ = -1;
  EndGesture();
  ShowUndo();
  ShowRedo(false);
}

void ZelUndo::Undo() {
  if (current_ < 0 || current_ >= Depth) {
    FatalError("Fatal Error 3 in ZelUndo");
    return;
  }
  EndGesture();
  const UndoEntry& entry = entries_[current_];
  entry.Target->Undo(entry);
  --current_;
  ShowUndo();
  ShowRedo(true);
}

void ZelUndo::Redo() {
  // The last entry has none after it. Whether the next one is still to be redone (current_ < top_)
  // is the caller's guarantee.
  if (current_ < -1 || current_ >= Depth - 1) {
    FatalError("Fatal Error 2 in ZelUndo");
    return;
  }
  EndGesture();
  ++current_;
  const UndoEntry& entry = entries_[current_];
  entry.Target->Redo(entry);
  ShowRedo(current_ != top_ && current_ < Depth - 1);
  ShowUndo();
}

void ZelUndo::DropOldest() {
  if (current_ != Depth - 1) {
    Error("Error 1 in ZelUndo");
    return;
  }
  std::move(entries_.begin() + 1, entries_.end(), entries_.begin());
  --current_;
  if (gestureStart_ != NoGesture && gestureStart_ > 0) --gestureStart_;
}

void ZelUndo::ShowUndo() {
  const std::string caption = CanUndo() ? "Undo " + entries_[current_].Description : "Undo";
  SetItems(UndoItem::UndoMenu, UndoItem::UndoButton, caption, CanUndo());
}

void ZelUndo::ShowRedo(bool available) {
  const std::string caption = available ? "Redo " + entries_[current_ + 1].Description : "Redo";
  SetItems(UndoItem::RedoMenu, UndoItem::RedoButton, caption, available);
}

void ZelUndo::SetItems(UndoItem menu, UndoItem button, const std::string& caption, bool enabled) {
  if (!items_) return;
  items_->SetCaption(menu, caption);
  items_->SetEnabled(menu, enabled);
  items_->SetEnabled(button, enabled);
}

}  // namespace torvane
