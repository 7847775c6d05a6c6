#include <algorithm>
#include <map>

#include "cli/command_error.h"
#include "cli/result_file.h"
#include "cli/study/study.h"
#include "cli/study/study_files.h"
#include "core/csv.h"
#include "core/csv_table.h"
#include "core/text.h"

namespace torvane::cli {
namespace {

constexpr std::size_t MostMissingNamed = 5;

/// How many runs a study has, from the first caption of a share's result.
std::optional<int> RunsOfStudy(const std::string& caption) {
  const std::string before = std::string(RunCaption) + ShareCaption;
  if (!caption.starts_with(before)) return {};
  return ParseInteger(caption.substr(before.size()));
}

/// The rows of a study by their runs' numbers.
class Shares {
 public:
  void Add(const std::string& path) {
    const std::vector<CsvRow> rows = ParseCsv(ReadStudyFile(path));
    const std::string first = rows.empty() ? "" : rows.front().Fields.front();
    if (first != RunCaption && !RunsOfStudy(first)) {
      throw UsageError(path + " is no result of a study");
    }
    if (captions_.empty()) captions_ = rows.front().Fields;
    if (captions_ != rows.front().Fields) throw UsageError(path + " is of another study");
    for (std::size_t i = 1; i < rows.size(); ++i) AddRow(path, rows[i]);
  }

  std::string Table() const {
    CheckThatNoneIsMissing();
    std::vector<std::string> captions = captions_;
    captions.front() = RunCaption;
    std::string table = CsvLine(captions);
    for (const auto& [run, row] : rows_) table += CsvLine(row);
    return table;
  }

 private:
  /// A result that is of no share has all runs up to its last one.
  int RunCount() const {
    const int last = rows_.empty() ? 0 : rows_.rbegin()->first;
    return std::max(last, RunsOfStudy(captions_.front()).value_or(0));
  }

  void CheckThatNoneIsMissing() const {
    const auto missing = static_cast<std::size_t>(RunCount()) - rows_.size();
    if (missing == 0) return;
    std::string text = std::to_string(missing) + " of " + std::to_string(RunCount()) +
                       (missing == 1 ? " runs is in no file:" : " runs are in no file:");
    std::size_t named = 0;
    for (int run = 1; named < std::min(missing, MostMissingNamed); ++run) {
      if (rows_.contains(run)) continue;
      text += (named++ > 0 ? ", " : " ") + std::to_string(run);
    }
    throw UsageError(text + (missing > named ? ", ..." : ""));
  }

  void AddRow(const std::string& path, const CsvRow& row) {
    const std::string place = path + ":" + std::to_string(row.Line) + ": ";
    const std::optional<int> run = ParseInteger(row.Fields.front());
    if (row.Fields.size() != captions_.size() || !run || *run < 1) {
      throw UsageError(place + "no row of a study");
    }
    if (!rows_.emplace(*run, row.Fields).second) {
      throw UsageError(place + "run " + std::to_string(*run) + " is there twice");
    }
  }

  std::vector<std::string> captions_;
  std::map<int, std::vector<std::string>> rows_;
};

}  // namespace

void MergeStudies(const StudyOptions& options) {
  if (options.Files.empty()) throw UsageError("--merge needs the results of shares");
  CheckStudyPicture(options);
  for (const std::string& path : options.Files) {
    CheckOutputs(options.Out, options.Picture, path);
  }
  Shares shares;
  for (const std::string& path : options.Files) shares.Add(path);
  const std::string table = shares.Table();
  if (options.Map.empty() && !options.Picture.empty()) {
    throw UsageError("--merge draws a map alone; --map names its measure");
  }
  CheckStudyPicture(options, table);
  ResultFile file(options.Out);
  file.Write(table);
  file.Close();
  if (!options.Picture.empty()) WriteStudyPicture(options, table, {});
}

}  // namespace torvane::cli
