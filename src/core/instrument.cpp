#include "core/instrument.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "core/files/model_file_lines.h"
#include "core/files/record.h"

namespace torvane {

namespace {

std::vector<std::string> LinesOf(const std::string& records) {
  std::vector<std::string> lines;
  LineReader reader(records);
  for (std::string line; reader.Next(line);) lines.push_back(line);
  return lines;
}

std::string Joined(const std::vector<std::string>& lines) {
  std::string records;
  for (const std::string& line : lines) records += line + "\n";
  return records;
}

// Leaves of both states only the lines in which they differ. States of one instrument have their
// lines in the same order; where one has more of them, both stay whole.
void KeepDifferences(RecordsChange& change) {
  const std::vector<std::string> before = LinesOf(change.Before);
  const std::vector<std::string> after = LinesOf(change.After);
  if (before.size() != after.size()) return;
  change = {};
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (before[i] == after[i]) continue;
    change.Before += before[i] + "\n";
    change.After += after[i] + "\n";
  }
}

}  // namespace

Instrument::Instrument(InstrumentKind kind, std::string name)
    : kind_(kind), name_(std::move(name)) {}

void Instrument::Refresh() {
  if (view_) view_->Redraw();
}

std::string Instrument::StateText() const {
  std::string text;
  RecordWriter writer(text, RecordKeyword(kind_), name_);
  SaveState(writer);
  return text;
}

void Instrument::Change(const std::function<void()>& change,
                        const std::function<std::string()>& caption) {
  // What a file or an undo brings is neither recorded nor shown before it is whole.
  if (changing_ || !history_ || history_->Suspended()) {
    change();
    return;
  }
  RecordsChange records;
  records.Before = StateText();
  changing_ = true;
  change();
  changing_ = false;
  records.After = StateText();
  if (records.Before == records.After) return;
  KeepDifferences(records);
  history_->Push({this, caption(), std::move(records)});
  TellSettingsChanged();
}

void Instrument::Undo(const UndoEntry& entry) {
  Restore(std::get<RecordsChange>(entry.What).Before);
}

void Instrument::Redo(const UndoEntry& entry) {
  Restore(std::get<RecordsChange>(entry.What).After);
}

void Instrument::Restore(const std::string& records) {
  history_->Suspend();
  for (const std::string& line : LinesOf(records)) LoadState(ParseRecord(line, 0));
  FinishLoading([](int /*line*/) {});
  history_->Resume();
}

Undoable::Merged Instrument::Merge(UndoEntry& earlier, const UndoEntry& later) const {
  auto& whole = std::get<RecordsChange>(earlier.What);
  const auto& last = std::get<RecordsChange>(later.What);
  std::vector<std::string> before = LinesOf(whole.Before);
  std::vector<std::string> after = LinesOf(whole.After);
  const std::vector<std::string> laterBefore = LinesOf(last.Before);
  const std::vector<std::string> laterAfter = LinesOf(last.After);
  const bool linesPair = before.size() == after.size() && laterBefore.size() == laterAfter.size();
  if (!linesPair) return Merged::No;
  for (std::size_t i = 0; i < laterBefore.size(); ++i) {
    const auto same = std::find(after.begin(), after.end(), laterBefore[i]);
    if (same != after.end()) {
      *same = laterAfter[i];
    } else {
      before.push_back(laterBefore[i]);
      after.push_back(laterAfter[i]);
    }
  }
  whole = {Joined(before), Joined(after)};
  earlier.Description = later.Description;
  return before == after ? Merged::Nothing : Merged::Yes;
}

void Instrument::BeginLoading() {
  if (!beforeLoading_ && history_ && history_->Holds(*this)) beforeLoading_ = StateText();
}

void Instrument::FinishLoading(const std::function<void(int line)>& /*atLine*/) {
  const std::optional<std::string> before = std::exchange(beforeLoading_, std::nullopt);
  if (before && *before != StateText()) history_->Forget(*this);
  TellSettingsChanged();
}

void Instrument::TellSettingsChanged() {
  if (view_) view_->SettingsChanged();
}

}  // namespace torvane
