#include "study/identity.h"

#include <algorithm>

#include "core/csv.h"
#include "core/csv_table.h"
#include "core/files/seal.h"

namespace torvane {
namespace {

constexpr const char* Keyword = "Torvane study";
constexpr const char* FormatPart = "format";
constexpr const char* Format = "2";  // of the files of shares
constexpr char SumMark = '#';

// It stands in one line, from which it is read back without the blanks at its end.
std::string OneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
  return text.substr(0, text.find_last_not_of(" \t") + 1);
}

std::string Told(const std::string& value) {
  return value.empty() ? "none" : value;
}

}  // namespace

StudyIdentity::StudyIdentity() : parts_{{FormatPart, Format}} {}

void StudyIdentity::Add(const std::string& what, const std::string& value) {
  parts_.emplace_back(what, OneLine(value));
}

void StudyIdentity::AddSum(const std::string& what, std::string_view text) {
  parts_.emplace_back(what, SumMark + ChecksumText(text));
}

std::string StudyIdentity::Line() const {
  std::vector<std::string> fields{Keyword};
  for (const auto& [what, value] : parts_) {
    fields.push_back(what);
    fields.back().append("=").append(value);
  }
  std::string line = CsvLine(fields);
  line.pop_back();
  return line + ',' + ChecksumText(line) + '\n';
}

std::optional<StudyIdentity> StudyIdentity::Parse(std::string_view line) {
  CsvReader reader(line);
  CsvRow row;
  if (!reader.Next(row) || !row.Whole || row.Fields.front() != Keyword) return {};
  StudyIdentity identity;
  identity.parts_.clear();
  for (std::size_t k = 1; k + 1 < row.Fields.size(); ++k) {
    const std::string& field = row.Fields[k];
    const std::size_t equals = field.find('=');
    if (equals == std::string::npos) return {};
    identity.parts_.emplace_back(field.substr(0, equals), field.substr(equals + 1));
  }
  CsvRow same;
  const std::string again = identity.Line();
  if (!CsvReader(again).Next(same) || same.Fields != row.Fields) return {};
  return identity;
}

std::string StudyIdentity::Value(const std::string& what) const {
  for (const auto& [name, value] : parts_) {
    if (name == what) return value;
  }
  return {};
}

std::string StudyIdentity::Difference(const StudyIdentity& other, bool sharesDiffer) const {
  std::string sums;
  for (const auto* parts : {&parts_, &other.parts_}) {
    for (const auto& [name, value] : *parts) {
      const std::string mine = Value(name);
      const std::string its = other.Value(name);
      if (mine == its || (name == SharePart && !sharesDiffer)) continue;
      if (name == UnitsPart) continue;  // they follow from the rest
      if (!value.starts_with(SumMark)) return name + " is " + Told(its) + ", not " + Told(mine);
      if (sums.empty()) sums.append("another ").append(name);
    }
  }
  return sums;
}

}  // namespace torvane
