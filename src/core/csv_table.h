#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {

/// Characters that a row of a CSV text may have.
inline constexpr std::size_t MaxCsvRowLength = std::size_t{64} << 10U;

/// A line of a CSV text that holds anything.
struct CsvRow {
  int Line = 0;  ///< its number, from 1
  std::vector<std::string> Fields;
  bool Whole = true;  ///< false of one longer than MaxCsvRowLength, of which Fields has the start
};

/// Takes apart what CsvLine wrote, or a spreadsheet, row by row: fields between commas, which may
/// be in quotes. Blanks around a field without quotes are no part of it.
class CsvReader {
 public:
  explicit CsvReader(std::string_view text);

  /// False at the end of the text, and after a row that is not whole.
  bool Next(CsvRow& row);

 private:
  std::size_t TakeQuoted(char c, bool quoteFollows);
  void Take(char c);
  void EndField();
  bool EndRow();

  std::string_view rest_;
  CsvRow row_;
  std::string field_;
  int line_ = 1;
  bool comma_ = false;
  bool quoted_ = false;
  bool inQuotes_ = false;
};

/// All rows of a text.
std::vector<CsvRow> ParseCsv(std::string_view text);

}  // namespace torvane
