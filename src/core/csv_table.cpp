#include "core/csv_table.h"

#include <algorithm>
#include <utility>

#include "core/text.h"

namespace torvane {
namespace {

constexpr std::string_view ByteOrderMark = "\xef\xbb\xbf";  // spreadsheets begin with it

}  // namespace

CsvReader::CsvReader(std::string_view text) : rest_(text) {
  if (rest_.starts_with(ByteOrderMark)) rest_.remove_prefix(ByteOrderMark.size());
}

bool CsvReader::Next(CsvRow& row) {
  row_ = {line_, {}, true};
  field_.clear();
  comma_ = quoted_ = inQuotes_ = false;
  std::size_t start = 0;
  bool ended = false;
  std::size_t i = 0;
  for (; i < rest_.size() && !ended && row_.Whole; ++i) {
    // A CR that no LF follows ends a line too.
    const bool alone = rest_[i] == '\r' && !rest_.substr(i + 1).starts_with('\n');
    const char c = alone && !inQuotes_ ? '\n' : rest_[i];
    if (c == '\n') ++line_;
    if (inQuotes_) {
      i += TakeQuoted(c, rest_.substr(i + 1).starts_with('"'));
    } else if (c == '\n') {
      ended = EndRow();
      start = i + 1;
    } else {
      Take(c);
    }
    row_.Whole = i < start + MaxCsvRowLength;
  }
  rest_.remove_prefix(row_.Whole ? std::min(i, rest_.size()) : rest_.size());
  if (!ended && !EndRow() && row_.Whole) return false;
  row = std::move(row_);
  return true;
}

// A quote within quotes is doubled; how many characters more than this one were taken.
std::size_t CsvReader::TakeQuoted(char c, bool quoteFollows) {
  if (c == '"' && !quoteFollows) {
    inQuotes_ = false;
    return 0;
  }
  field_ += c;
  return c == '"' ? 1 : 0;
}

void CsvReader::Take(char c) {
  if (c == '"' && Trimmed(field_).empty()) {
    field_.clear();
    inQuotes_ = quoted_ = true;
  } else if (c == ',') {
    EndField();
    comma_ = true;
  } else if (c != '\r' && !quoted_) {
    field_ += c;
  }
}

void CsvReader::EndField() {
  row_.Fields.emplace_back(quoted_ ? field_ : Trimmed(field_));
  field_.clear();
  quoted_ = false;
}

// False of a blank line; the next one then begins the row.
bool CsvReader::EndRow() {
  if (!comma_ && !quoted_ && Trimmed(field_).empty()) {
    row_.Line = line_;
    field_.clear();
    return false;
  }
  EndField();
  return true;
}

std::vector<CsvRow> ParseCsv(std::string_view text) {
  CsvReader reader(text);
  std::vector<CsvRow> rows;
  for (CsvRow row; reader.Next(row);) rows.push_back(std::move(row));
  return rows;
}

}  // namespace torvane
