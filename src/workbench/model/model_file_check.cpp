#include "workbench/model/model_file_check.h"

#include <algorithm>
#include <map>

#include "core/files/model_file.h"
#include "core/files/model_file_lines.h"
#include "core/files/record.h"
#include "core/text.h"

namespace torvane {
namespace {

// The fields that say which setting a record is about; its values follow.
std::string KeyOf(const Record& record) {
  std::size_t count = 3;
  if (record.Field(0) == "Constant") count = 2;
  if (record.Keyword() == "Channel" || record.Keyword() == "Trigger") count = 4;
  std::string key;
  for (std::size_t i = 0; i < count; ++i) key += record.Field(i) + ',';
  return key;
}

// A number may be written in many ways, and some are saved with fewer digits than a file may have.
bool SameValue(const std::string& a, const std::string& b) {
  const auto x = ParseNumber(a);
  const auto y = ParseNumber(b);
  if (x && y) return FormatRecordNumber(*x) == FormatRecordNumber(*y);
  return Trimmed(a) == Trimmed(b);
}

bool SameValues(const Record& record, const Record& saved) {
  const std::size_t count = std::max(record.Fields.size(), saved.Fields.size());
  for (std::size_t i = 0; i < count; ++i) {
    if (!SameValue(record.Field(i), saved.Field(i))) return false;
  }
  return true;
}

bool HasControlCharacter(const std::string& line) {
  return std::any_of(line.begin(), line.end(), [](char c) {
    return (static_cast<unsigned char>(c) < ' ' && c != '\t') || c == '\x7f';
  });
}

std::vector<Record> Records(std::string_view text) {
  std::vector<Record> records;
  LineReader lines(text);
  for (std::string line; lines.Next(line);) records.push_back(ParseRecord(line, lines.Number()));
  return records;
}

bool IsHead(const Record& record) {
  return record.Field(0) == "Application" || record.Field(0) == "Loop" ||
         record.Field(0) == "Model";
}

}  // namespace

void RemarkOnLines(std::string_view text, const ZelModel& model, const std::set<int>& reported,
                   const std::function<void(int line, const std::string& text)>& remark) {
  std::map<std::string, Record> saved;
  for (Record& record : Records(ModelFileText(model))) saved[KeyOf(record)] = std::move(record);

  const std::vector<Record> records = Records(text);
  std::map<std::string, int> lastOf;
  for (const Record& record : records) lastOf[KeyOf(record)] = record.Number;

  for (const Record& record : records) {
    if (HasControlCharacter(record.Line)) remark(record.Number, "a control character in the line");
    if (record.Fields.empty() || IsHead(record) || reported.count(record.Number) > 0) continue;
    const std::string key = KeyOf(record);
    const auto found = saved.find(key);
    if (found == saved.end()) {
      remark(record.Number, "ignored: " + record.Line);
    } else if (lastOf[key] == record.Number && !SameValues(record, found->second)) {
      remark(record.Number, "taken as: " + found->second.Line);
    }
  }
  if (!text.empty() && text.back() != '\n') {
    remark(records.back().Number, "the last line has no end; it may be cut short");
  }
}

}  // namespace torvane
