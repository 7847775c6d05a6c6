#include "core/undo.h"

#include <algorithm>

#include "core/messages.h"

namespace torvane {

void ZelUndo::Attach(UndoItems* items) {
  items_ = items;
  ShowUndo();
  ShowRedo(CanRedo());
}

void ZelUndo::Push(const UndoEntry& entry) {
  if (suspended_) {
    missedChange_ = true;
    return;
  }
  if (current_ >= Depth) {
    FatalError("Fatal Error 1 in ZelUndo");
    return;
  }
  if (current_ == Depth - 1) DropOldest();
  ++current_;
  entries_[current_] = entry;
  ShowUndo();
  top_ = current_;
  ShowRedo(false);
}

void ZelUndo::Resume() {
  suspended_ = false;
  if (!missedChange_) return;
  missedChange_ = false;
  current_ = top_ = -1;
  ShowUndo();
  ShowRedo(false);
}

void ZelUndo::Undo() {
  if (current_ < 0 || current_ >= Depth) {
    FatalError("Fatal Error 3 in ZelUndo");
    return;
  }
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
