#include "study/result_table.h"

#include <algorithm>
#include <set>

#include "core/names.h"
#include "core/text.h"
#include "study/row.h"
#include "study/study_fault.h"

namespace torvane {

ResultTable::ResultTable(std::string_view table) : rows_(ParseCsv(table)) {
  if (rows_.empty()) throw StudyFault("no result of a study");
  captions_ = std::move(rows_.front().Fields);
  rows_.erase(rows_.begin());
  const auto mark = std::find(captions_.rbegin(), captions_.rend(), MeasuresCaption);
  const bool whole = std::all_of(rows_.begin(), rows_.end(), [this](const CsvRow& row) {
    return row.Fields.size() == captions_.size();
  });
  if (mark == captions_.rend() || !whole) throw StudyFault("no result of a study");
  mark_ = static_cast<std::size_t>(captions_.rend() - mark) - 1;
}

double ResultTable::Number(std::size_t row, std::size_t column) const {
  if (const auto value = ParseNumber(Text(row, column))) return *value;
  throw StudyFault("--map needs numbers; " + captions_[column] + " is \"" + Text(row, column) +
                   "\"");
}

std::vector<std::size_t> ResultTable::VaryingSettings() const {
  std::vector<std::size_t> varying;
  for (std::size_t column = 1; column < mark_; ++column) {
    const bool varies = std::any_of(rows_.begin(), rows_.end(), [&](const CsvRow& row) {
      return row.Fields[column] != rows_.front().Fields[column];
    });
    if (varies) varying.push_back(column);
  }
  return varying;
}

std::size_t ResultTable::Measure(const std::string& name) const {
  const std::vector<std::string> measures(
      captions_.begin() + static_cast<std::ptrdiff_t>(mark_) + 1, captions_.end() - 1);
  const int found = IndexOfName(name, measures);
  if (found < 0) throw StudyFault(UnknownNameText("measure", name, measures));
  return mark_ + 1 + static_cast<std::size_t>(found);
}

std::size_t ResultTable::RowOf(int run) const {
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    if (Text(row, 0) == std::to_string(run)) return row;
  }
  throw StudyFault("--chosen: run " + std::to_string(run) + " is none of the study's");
}

std::string ResultTable::Described(std::size_t row) const {
  std::string text = "run " + Text(row, 0);
  for (std::size_t column = 1; column < mark_; ++column) {
    text += ", " + captions_[column] + " = " + Text(row, column);
  }
  return text;
}

StudyMap ResultTable::MapOf(const std::string& measure, const std::string& unit,
                            std::optional<std::size_t> chosen) const {
  const std::size_t column = Measure(measure);
  const std::vector<std::size_t> axes = VaryingSettings();
  if (axes.size() < 2) throw StudyFault("--map needs two settings that vary");
  StudyMap map{captions_[axes[0]], captions_[axes[1]], measure + " (" + unit + ")", {}, chosen};
  std::set<std::pair<double, double>> places;
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    map.Runs.push_back(
        {Number(row, axes[0]), Number(row, axes[1]), ParseNumber(Text(row, column))});
    if (places.emplace(map.Runs.back().X, map.Runs.back().Y).second) continue;
    throw StudyFault("--map: run " + Text(row, 0) + " has the same " + map.XName + " and " +
                     map.YName + " as one before");
  }
  return map;
}

}  // namespace torvane
