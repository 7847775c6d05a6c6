#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cli/result_file.h"
#include "cli/study/study_files.h"

namespace torvane::cli {

/// Where the rows of a study go. Those for a file stand in its part file until the last one is
/// there; then the file is written whole. Standard output, a pipe or a device gets them at once and
/// cannot go on after a kill.
class StudyResult {
 public:
  /// How a row begins, by its position; rows of a part file that begin otherwise are done again.
  using RowBegin = std::function<std::string(std::size_t row)>;

  StudyResult(const std::string& out, const std::string& header, const std::string& identity,
              const RowBegin& rowBegin);

  std::size_t RowCount() const { return rows_; }
  /// Header and rows so far.
  const std::string& Table() const { return table_; }
  void Append(const std::string& row);
  void Close();

  /// What a message about an interrupted study ends with.
  const char* HowToGoOn() const { return part_ ? "; the same command goes on" : ""; }

 private:
  ResultFile file_;
  std::optional<PartFile> part_;
  std::string table_;
  std::size_t rows_ = 0;
};

}  // namespace torvane::cli
