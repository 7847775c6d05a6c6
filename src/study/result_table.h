#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/csv_table.h"
#include "study/measures.h"
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
  /// Of the rows that meet what was required, if anything was, that with the best of the measure.
  std::optional<std::size_t> BestRow(const RunMeasure& measure) const;
  /// A measure over two settings, the first two that vary when they are not given.
  StudyMap MapOf(const std::string& measure,
                 const std::optional<std::pair<std::string, std::string>>& axes) const;

 private:
  const std::string& Text(std::size_t row, std::size_t column) const {
    return rows_[row].Fields[column];
  }
  double Number(std::size_t row, std::size_t column) const;
  std::vector<std::size_t> VaryingSettings() const;
  /// The two axes first, then what varies beside them.
  std::vector<std::size_t> MapSettings(
      const std::optional<std::pair<std::string, std::string>>& axes) const;
  bool Meets(std::size_t row) const;
  /// "KVI = 20, J = 0.002" of those settings, numbers with so many digits;
  /// with 0 as they stand.
  std::string Values(std::size_t row, std::span<const std::size_t> settings, int digits) const;
  std::size_t Measure(const std::string& name) const;

  std::vector<std::string> captions_;
  std::vector<CsvRow> rows_;
  std::size_t mark_ = 0;  ///< the column between settings and measures
};

}  // namespace torvane
