#include <set>

#include "cli/command_error.h"
#include "cli/names.h"
#include "cli/pictures.h"
#include "cli/study/study.h"
#include "core/csv_table.h"
#include "core/text.h"

namespace torvane::cli {
namespace {

// A result: Run, settings, measures, Reason. Where the measures begin is not written in it.
constexpr const char* FirstMeasure = "Overshoot";

/// A study's table, by columns.
class Columns {
 public:
  explicit Columns(const std::string& table) : rows_(ParseCsv(table)) {
    captions_ = rows_.front().Fields;
    rows_.erase(rows_.begin());
    measures_ = static_cast<std::size_t>(IndexOfName(FirstMeasure, captions_));
    if (measures_ >= captions_.size()) throw UsageError("no result of a study");
  }

  std::size_t RowCount() const { return rows_.size(); }
  const std::string& Caption(std::size_t column) const { return captions_[column]; }
  const std::string& Text(std::size_t row, std::size_t column) const {
    return rows_[row].Fields[column];
  }

  /// The first two settings that vary.
  std::vector<std::size_t> Axes() const {
    std::vector<std::size_t> axes;
    for (std::size_t column = 1; column < measures_ && axes.size() < 2; ++column) {
      for (const CsvRow& row : rows_) {
        if (row.Fields[column] == rows_.front().Fields[column]) continue;
        axes.push_back(column);
        break;
      }
    }
    if (axes.size() < 2) throw UsageError("--map needs two settings that vary");
    return axes;
  }

  std::size_t Measure(const std::string& name) const {
    const std::vector<std::string> measures(
        captions_.begin() + static_cast<std::ptrdiff_t>(measures_), captions_.end() - 1);
    const int found = IndexOfName(name, measures);
    if (found < 0) throw UnknownName("measure", name, measures);
    return measures_ + static_cast<std::size_t>(found);
  }

  /// The row of the run of that number; it must be there.
  std::optional<std::size_t> RowOf(const std::optional<int>& run) const {
    if (!run) return {};
    for (std::size_t row = 0; row < rows_.size(); ++row) {
      if (Text(row, 0) == std::to_string(*run)) return row;
    }
    throw UsageError("--chosen: run " + std::to_string(*run) + " is none of the study's");
  }

  std::string Described(std::size_t row) const {
    std::string text = "run " + Text(row, 0);
    for (std::size_t column = 1; column < measures_; ++column) {
      text += ", " + Caption(column) + " = " + Text(row, column);
    }
    return text;
  }

 private:
  std::vector<CsvRow> rows_;
  std::vector<std::string> captions_;
  std::size_t measures_ = 0;
};

StudyMap MapOf(const StudyOptions& options, const Columns& columns) {
  const std::size_t measure = columns.Measure(options.Map);
  const std::vector<std::size_t> axes = columns.Axes();
  StudyMap map{columns.Caption(axes[0]),
               columns.Caption(axes[1]),
               options.Map + " (" + MeasureUnit(options.Map) + ")",
               {},
               columns.RowOf(options.Chosen)};
  std::set<std::pair<double, double>> places;
  for (std::size_t row = 0; row < columns.RowCount(); ++row) {
    const auto number = [&](std::size_t axis) {
      const auto value = ParseNumber(columns.Text(row, axis));
      if (value) return *value;
      throw UsageError("--map needs numbers; " + columns.Caption(axis) + " is \"" +
                       columns.Text(row, axis) + "\"");
    };
    map.Runs.push_back({number(axes[0]), number(axes[1]), ParseNumber(columns.Text(row, measure))});
    if (places.emplace(map.Runs.back().X, map.Runs.back().Y).second) continue;
    throw UsageError("--map: run " + columns.Text(row, 0) + " has the same " + map.XName + " and " +
                     map.YName + " as one before");
  }
  return map;
}

}  // namespace

void CheckStudyPicture(const StudyOptions& options) {
  CheckPictureFile(options.Picture);
  if (!options.Picture.empty()) return;
  if (!options.Map.empty()) throw UsageError("--map needs --picture");
  if (options.Chosen) throw UsageError("--chosen needs --picture");
}

void CheckStudyPicture(const StudyOptions& options, const std::string& table) {
  if (options.Picture.empty()) return;
  const Columns columns(table);
  columns.RowOf(options.Chosen);
  if (!options.Map.empty()) MapOf(options, columns);
}

void WriteStudyPicture(const StudyOptions& options, const std::string& table,
                       StudyResponses responses) {
  if (options.Picture.empty()) return;
  const Columns columns(table);
  if (!options.Map.empty()) {
    WritePicture(MapOf(options, columns), options.Picture);
    return;
  }
  responses.Chosen = columns.RowOf(options.Chosen);
  if (responses.Chosen) responses.ChosenText = columns.Described(*responses.Chosen);
  WritePicture(std::move(responses), options.Picture);
}

}  // namespace torvane::cli
