#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/csv_table.h"
#include "study/study_pictures.h"

namespace torvane {

/// A study's whole table, by columns. A text that is none, and names and runs that are not in it,
/// are StudyFaults.
class ResultTable {
 public:
  explicit ResultTable(std::string_view table);

  /// The row of the run of that number, from 1.
  std::size_t RowOf(int run) const;
  /// A run in words: its number and its settings.
  std::string Described(std::size_t row) const;
  /// A measure over the first two settings that vary.
  StudyMap MapOf(const std::string& measure, const std::string& unit,
                 std::optional<std::size_t> chosen) const;

 private:
  const std::string& Text(std::size_t row, std::size_t column) const {
    return rows_[row].Fields[column];
  }
  double Number(std::size_t row, std::size_t column) const;
  std::vector<std::size_t> VaryingSettings() const;
  std::size_t Measure(const std::string& name) const;

  std::vector<std::string> captions_;
  std::vector<CsvRow> rows_;
  std::size_t mark_ = 0;  ///< the column between settings and measures
};

}  // namespace torvane
