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

/// The rows of a study by their runs' numbers.
class Shares {
 public:
  void Add(const std::string& path) {
    const std::vector<CsvRow> rows = ParseCsv(ReadStudyFile(path));
    if (rows.empty() || rows.front().Fields.front() != "Run") {
      throw UsageError(path + " is no result of a study");
    }
    if (captions_.empty()) captions_ = rows.front().Fields;
    if (captions_ != rows.front().Fields) throw UsageError(path + " is of another study");
    for (std::size_t i = 1; i < rows.size(); ++i) AddRow(path, rows[i]);
  }

  std::string Table() const {
    std::string table = CsvLine(captions_);
    int next = 1;
    for (const auto& [run, row] : rows_) {
      if (run != next) throw UsageError("run " + std::to_string(next) + " is in no file");
      ++next;
      table += CsvLine(row);
    }
    return table;
  }

 private:
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
