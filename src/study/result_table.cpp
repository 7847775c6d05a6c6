#include "study/result_table.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <set>
#include <tuple>

#include "core/names.h"
#include "core/text.h"
#include "study/row.h"
#include "study/study_fault.h"

namespace torvane {
namespace {

// Of "Gain (dB)" the "Gain".
std::string WithoutUnit(const std::string& caption) {
  const auto unit = caption.rfind(" (");
  return unit != std::string::npos && caption.ends_with(")") ? caption.substr(0, unit) : caption;
}

}  // namespace

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
  for (std::size_t column = mark_ + 1; column < captions_.size(); ++column) {
    const std::string name = WithoutUnit(captions_[column]);
    const bool known = std::ranges::any_of(
        Measures(), [&](const RunMeasure& measure) { return name == measure.Caption; });
    if (known) captions_[column] = name;
  }
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
  std::vector<std::size_t> settings(mark_ - 1);
  std::iota(settings.begin(), settings.end(), 1);
  return "run " + Text(row, 0) + (settings.empty() ? "" : ", ") + Values(row, settings, 0);
}

bool ResultTable::Meets(std::size_t row) const {
  const auto column = std::find(captions_.begin() + static_cast<std::ptrdiff_t>(mark_),
                                captions_.end(), MeetsCaption);
  return column == captions_.end() ||
         Text(row, static_cast<std::size_t>(column - captions_.begin())) == "1";
}

std::optional<std::size_t> ResultTable::BestRow(const RunMeasure& measure) const {
  const std::size_t column = Measure(measure.Caption);
  std::optional<std::size_t> best;
  double least = 0.0;
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    const auto value = ParseNumber(Text(row, column));
    if (!value || !Meets(row)) continue;
    const double badness = measure.MoreIsBetter ? -*value : *value;
    if (best && badness >= least) continue;
    best = row;
    least = badness;
  }
  return best;
}

std::vector<std::size_t> ResultTable::MapSettings(
    const std::optional<std::pair<std::string, std::string>>& axes) const {
  std::vector<std::size_t> settings = VaryingSettings();
  if (!axes) {
    if (settings.size() < 2) throw StudyFault("--map needs two settings that vary");
    return settings;
  }
  std::vector<std::string> names;
  for (std::size_t column = 1; column < mark_; ++column) {
    const std::string& caption = captions_[column];
    const bool whole = caption == axes->first || caption == axes->second;
    names.push_back(whole ? caption : WithoutUnit(caption));
  }
  auto place = settings.begin();
  for (const std::string& name : {axes->first, axes->second}) {
    const int found = IndexOfName(name, names);
    if (found < 0) throw StudyFault(UnknownNameText("setting", name, names));
    const auto at = std::find(place, settings.end(), static_cast<std::size_t>(found) + 1);
    if (at == settings.end())
      throw StudyFault("--axes: " + name + " does not vary, or stands twice");
    std::rotate(place, at, at + 1);
    ++place;
  }
  return settings;
}

std::string ResultTable::Values(std::size_t row, std::span<const std::size_t> settings,
                                int digits) const {
  std::string text;
  for (const std::size_t column : settings) {
    const auto number = digits > 0 ? ParseNumber(Text(row, column)) : std::nullopt;
    text += (text.empty() ? "" : ", ") + captions_[column] + " = " +
            (number ? FormatGeneral(*number, digits, 1) : Text(row, column));
  }
  return text;
}

// A grid of more than two settings is cut into slices; runs that lie anywhere are in one.
StudyMap ResultTable::MapOf(const std::string& measure,
                            const std::optional<std::pair<std::string, std::string>>& axes) const {
  constexpr std::size_t MostSlices = 16;
  const std::size_t column = Measure(measure);
  const std::vector<std::size_t> settings = MapSettings(axes);
  std::span<const std::size_t> others = std::span(settings).subspan(2);
  std::set<std::string> texts;
  for (std::size_t row = 0; row < rows_.size(); ++row) texts.insert(Values(row, others, 4));
  if (texts.size() > std::min(MostSlices, rows_.size() / 2)) others = {};

  const std::string unit = MeasureUnit(measure);
  StudyMap map;
  map.XName = captions_[settings[0]];
  map.YName = captions_[settings[1]];
  map.Measure = measure + (unit.empty() ? "" : " (" + unit + ")");
  std::map<std::string, std::size_t> slices;
  std::set<std::tuple<std::size_t, double, double>> places;
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    const std::string text = Values(row, others, 4);
    const std::size_t slice = slices.emplace(text, map.Slices.size()).first->second;
    if (slice == map.Slices.size()) map.Slices.push_back({text, {}});
    const double x = Number(row, settings[0]);
    const double y = Number(row, settings[1]);
    if (!places.emplace(slice, x, y).second) {
      throw StudyFault("--map: run " + Text(row, 0) + " has the same " + map.XName + " and " +
                       map.YName + " as one before");
    }
    map.Slices[slice].Runs.push_back({x, y, ParseNumber(Text(row, column)), row, Meets(row)});
  }
  return map;
}

}  // namespace torvane
