#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace torvane {

/// A line of a CSV text that holds anything.
struct CsvRow {
  int Line = 0;  ///< its number, from 1
  std::vector<std::string> Fields;
};

/// Reads what CsvLine wrote, or a spreadsheet: fields between commas, which may be in quotes.
/// Blanks around a field without quotes are no part of it.
std::vector<CsvRow> ParseCsv(std::string_view text);

}  // namespace torvane
