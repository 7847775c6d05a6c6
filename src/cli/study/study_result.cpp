#include "cli/study/study_result.h"

#include "core/files/atomic_save.h"
#include "core/messages.h"

namespace torvane::cli {
namespace {

constexpr std::chrono::seconds FlushPeriod(1);

}  // namespace

StudyResult::StudyResult(const std::string& out, const StudyIdentity& identity,
                         const std::string& head)
    : file_(out, IsReplaced(out) ? Delivery::Whole : Delivery::Streamed),
      head_(head),
      share_(!identity.Value(SharePart).empty()),
      seals_(identity, head) {
  if (!IsReplaced(out)) {
    file_.Write(share_ ? seals_.Begin() : head_);
    return;
  }
  part_.emplace(out, identity, head);
  rows_ = part_->TakeRows();
  const std::size_t damaged = part_->Damaged();
  if (damaged == 0) return;
  Note(part_->Name() + ": " + std::to_string(damaged) +
       (damaged == 1 ? " damaged row is measured again" : " damaged rows are measured again"));
}

std::string StudyResult::Table() const {
  std::string table = head_;
  for (const auto& row : rows_) table += row.second;
  return table;
}

void StudyResult::Append(const StudyRow& row) {
  const std::string line = RowLine(row);
  rows_.emplace(row.Run, line);
  if (part_) {
    part_->Append(line);
  } else {
    file_.Write(Line(line));
  }
}

void StudyResult::FlushNowAndThen() {
  const auto now = std::chrono::steady_clock::now();
  if (!part_ || now - flushed_ < FlushPeriod) return;
  part_->Flush();
  flushed_ = now;
}

void StudyResult::Close() {
  if (part_) {
    file_.Write(share_ ? seals_.Begin() : head_);
    for (const auto& row : rows_) file_.Write(Line(row.second));
  }
  file_.Close();
  if (part_) part_->Remove();
}

}  // namespace torvane::cli
