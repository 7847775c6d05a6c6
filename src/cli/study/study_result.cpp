#include "cli/study/study_result.h"

#include <filesystem>

namespace torvane::cli {
namespace {

bool IsForPlainFile(const std::string& path) {
  std::error_code failure;
  const auto status = std::filesystem::status(path, failure);
  return !path.empty() && (!std::filesystem::exists(status) || is_regular_file(status));
}

}  // namespace

StudyResult::StudyResult(const std::string& out, const std::string& header,
                         const std::string& identity, const RowBegin& rowBegin)
    : file_(out, IsForPlainFile(out) ? Delivery::Whole : Delivery::Streamed), table_(header) {
  if (!IsForPlainFile(out)) {
    file_.Write(header);
    return;
  }
  part_.emplace(out, identity);
  for (const std::string& row : part_->Rows()) {
    const std::string begin = rowBegin(rows_);
    if (begin.empty() || !row.starts_with(begin)) break;
    table_ += row;
    ++rows_;
  }
  part_->KeepRows(rows_);
}

void StudyResult::Append(const std::string& row) {
  table_ += row;
  ++rows_;
  if (part_) {
    part_->Append(row);
  } else {
    file_.Write(row);
  }
}

void StudyResult::Close() {
  if (part_) file_.Write(table_);
  file_.Close();
  if (part_) part_->Remove();
}

}  // namespace torvane::cli
