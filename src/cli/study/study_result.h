#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cli/io/result_file.h"
#include "cli/io/table.h"
#include "study/part_file.h"
#include "study/row.h"
#include "study/sealed_rows.h"

namespace torvane::cli {

/// Where the rows of a study go. Those for a file stand in its part file until the last one is
/// there; then the file is written whole. Standard output, a pipe or a device gets them at once and
/// cannot go on after a kill. Those of a share are sealed, finished or not.
class StudyResult {
 public:
  /// Says what is damaged in a part file; those rows are done again. `head` is the line of
  /// captions, `columns` what it is made of.
  StudyResult(const std::string& out, const StudyIdentity& identity, const std::string& head,
              std::vector<Column> columns, const TableForm& form);

  std::size_t RowCount() const { return rows_.size(); }
  bool Has(std::size_t run) const { return rows_.contains(run); }
  /// Head and rows so far.
  std::string Table() const;
  void Append(const StudyRow& row);
  /// Once a second the rows so far are made safe from a power cut.
  void FlushNowAndThen();
  void Close();

  /// What a message about an interrupted study ends with.
  const char* HowToGoOn() const { return part_ ? "; the same command goes on" : ""; }

 private:
  void BeginTable();
  void WriteRow(const std::string& row);

  ResultFile file_;
  std::string head_;
  std::vector<Column> columns_;
  TableForm form_;
  bool share_;
  SealedRows seals_;
  std::optional<PartFile> part_;
  std::map<std::size_t, std::string> rows_;  ///< without seals
  std::optional<TableWriter> table_;         ///< unless it is a share's
  std::chrono::steady_clock::time_point flushed_ = std::chrono::steady_clock::now();
};

}  // namespace torvane::cli
