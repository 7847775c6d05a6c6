#include "cli/study/study_result.h"

#include <utility>

#include "core/files/atomic_save.h"
#include "core/messages.h"

namespace torvane::cli {
namespace {

constexpr std::chrono::seconds FlushPeriod(1);

}  // namespace

StudyResult::StudyResult(const std::string& out, const StudyIdentity& identity,
                         const std::string& head, std::vector<Column> columns,
                         const TableForm& form)
    : file_(out, IsReplaced(out) ? Delivery::Whole : Delivery::Streamed),
      head_(head),
      columns_(std::move(columns)),
      form_(form),
      share_(!identity.Value(SharePart).empty()),
      seals_(identity, head) {
  if (!IsReplaced(out)) {
    BeginTable();
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

void StudyResult::BeginTable() {
  if (share_) {
    file_.Write(seals_.Begin());
  } else {
    table_.emplace(columns_, form_, file_);
  }
}

void StudyResult::WriteRow(const std::string& row) {
  if (share_) {
    file_.Write(seals_.Sealed(row));
  } else {
    table_->WriteLine(row);
  }
}

void StudyResult::Append(const StudyRow& row) {
  const std::string line = RowLine(row);
  rows_.emplace(row.Run, line);
  if (part_) {
    part_->Append(line);
  } else {
    WriteRow(line);
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
    BeginTable();
    for (const auto& row : rows_) WriteRow(row.second);
  }
  if (table_) table_->End();
  file_.Close();
  if (part_) part_->Remove();
}

}  // namespace torvane::cli
