#include "core/csv_table.h"

#include <utility>

namespace torvane {
namespace {

constexpr std::string_view ByteOrderMark = "\xef\xbb\xbf";  // spreadsheets begin with it

/// Takes a text apart, character by character.
class CsvReader {
 public:
  std::vector<CsvRow> Read(std::string_view text) {
    if (text.starts_with(ByteOrderMark)) text.remove_prefix(ByteOrderMark.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
      const char c = text[i];
      if (c == '\n') ++line_;
      if (inQuotes_) {
        i += TakeQuoted(c, text.substr(i + 1).starts_with('"'));
      } else {
        Take(c);
      }
    }
    EndRow();
    return std::move(rows_);
  }

 private:
  // A quote within quotes is doubled; how many characters more than this one were taken.
  std::size_t TakeQuoted(char c, bool quoteFollows) {
    if (c == '"' && !quoteFollows) {
      inQuotes_ = false;
      return 0;
    }
    field_ += c;
    return c == '"' ? 1 : 0;
  }

  void Take(char c) {
    if (c == '"' && Trimmed().empty()) {
      field_.clear();
      inQuotes_ = quoted_ = true;
    } else if (c == ',') {
      EndField();
      comma_ = true;
    } else if (c == '\n') {
      EndRow();
    } else if (c != '\r' && !quoted_) {
      field_ += c;
    }
  }

  std::string Trimmed() const {
    const auto first = field_.find_first_not_of(" \t");
    if (first == std::string::npos) return {};
    return field_.substr(first, field_.find_last_not_of(" \t") + 1 - first);
  }

  void EndField() {
    row_.Fields.push_back(quoted_ ? field_ : Trimmed());
    field_.clear();
    quoted_ = false;
  }

  void EndRow() {
    const bool blank = !comma_ && !quoted_ && Trimmed().empty();
    if (!blank) {
      EndField();
      rows_.push_back(std::move(row_));
    }
    row_ = {line_, {}};
    field_.clear();
    comma_ = quoted_ = inQuotes_ = false;
  }

  std::vector<CsvRow> rows_;
  CsvRow row_{1, {}};
  std::string field_;
  int line_ = 1;
  bool comma_ = false;
  bool quoted_ = false;
  bool inQuotes_ = false;
};

}  // namespace

std::vector<CsvRow> ParseCsv(std::string_view text) {
  return CsvReader().Read(text);
}

}  // namespace torvane
