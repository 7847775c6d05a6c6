#include "cli/io/pictures.h"
#include "cli/study/study.h"
#include "study/result_table.h"

namespace torvane::cli {
namespace {

std::optional<std::size_t> ChosenRow(const StudyOptions& options, const ResultTable& table) {
  if (!options.Chosen) return {};
  return table.RowOf(*options.Chosen);
}

StudyMap MapOf(const StudyOptions& options, const ResultTable& table) {
  return table.MapOf(options.Map, MeasureUnit(options.Map), ChosenRow(options, table));
}

}  // namespace

void CheckStudyPicture(const StudyOptions& options, const std::string& table) {
  if (options.Picture.empty()) return;
  const ResultTable result(table);
  ChosenRow(options, result);
  if (!options.Map.empty()) MapOf(options, result);
}

void WriteStudyPicture(const StudyOptions& options, const std::string& table,
                       StudyResponses responses) {
  if (options.Picture.empty()) return;
  const ResultTable result(table);
  if (!options.Map.empty()) {
    WritePicture(MapOf(options, result), options.Picture);
    return;
  }
  responses.Chosen = ChosenRow(options, result);
  if (responses.Chosen) responses.ChosenText = result.Described(*responses.Chosen);
  WritePicture(std::move(responses), options.Picture);
}

}  // namespace torvane::cli
