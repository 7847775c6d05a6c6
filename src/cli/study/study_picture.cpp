#include <algorithm>
#include <sstream>

#include "cli/io/pictures.h"
#include "cli/study/study.h"
#include "core/messages.h"
#include "core/text.h"
#include "study/requirement.h"
#include "study/result_table.h"
#include "workbench/work_fault.h"

namespace torvane::cli {
namespace {

std::optional<std::size_t> BestRow(const StudyCommand& options, const ResultTable& table) {
  if (options.Study.Best.empty()) return {};
  return table.BestRow(NamedMeasure(options.Study.Best));
}

// The run that was asked for, or else the best one.
std::optional<std::size_t> ChosenRow(const StudyCommand& options, const ResultTable& table) {
  if (options.Chosen) return table.RowOf(*options.Chosen);
  return BestRow(options, table);
}

// The two parts of "A,B" or "A:B".
std::pair<std::string, std::string> TwoParts(const std::string& text, char at, const char* form) {
  const auto split = text.find(at);
  if (split == std::string::npos || text.find(at, split + 1) != std::string::npos) {
    throw UsageError(std::string(form) + ", not \"" + text + "\"");
  }
  return {std::string(Trimmed(std::string_view(text).substr(0, split))),
          std::string(Trimmed(std::string_view(text).substr(split + 1)))};
}

std::vector<double> LevelsOf(const std::string& text) {
  std::vector<double> levels;
  std::istringstream list(text);
  for (std::string level; std::getline(list, level, ',');) {
    const auto number = ParseNumber(std::string(Trimmed(level)));
    if (!number) throw UsageError("--levels needs numbers, not \"" + level + "\"");
    levels.push_back(*number);
  }
  std::sort(levels.begin(), levels.end());
  return levels;
}

StudyMap MapOf(const StudyCommand& options, const ResultTable& table) {
  const StudyMapChoice& choice = options.Map;
  std::optional<std::pair<std::string, std::string>> axes;
  if (!choice.Axes.empty()) axes = TwoParts(choice.Axes, ',', "--axes needs X,Y");
  StudyMap map = table.MapOf(NamedMeasure(choice.Measure).Caption, axes);
  map.Chosen = ChosenRow(options, table);
  map.Contours = choice.Contours;
  if (!choice.Levels.empty()) map.Levels = LevelsOf(choice.Levels);
  map.Contours = map.Contours || !map.Levels.empty();
  if (!choice.Limits.empty()) {
    const char* const form = "--limits needs LOW:HIGH";
    const auto [low, high] = TwoParts(choice.Limits, ':', form);
    const auto least = ParseNumber(low);
    const auto most = ParseNumber(high);
    if (!least || !most || !(*least < *most)) {
      throw UsageError(std::string(form) + ", not \"" + choice.Limits + "\"");
    }
    map.Limits = {*least, *most};
  }
  return map;
}

}  // namespace

void TellStudyBest(const StudyCommand& options, const std::string& table) {
  if (options.Study.Best.empty()) return;
  const ResultTable result(table);
  const auto best = BestRow(options, result);
  if (!best) {
    Note("no run is the best: none that meets what is required has a " +
         std::string(NamedMeasure(options.Study.Best).Caption));
    return;
  }
  Note("the best: " + result.Described(*best));
}

void CheckStudyPicture(const StudyCommand& options, const std::string& table) {
  if (options.Picture.empty()) return;
  const ResultTable result(table);
  ChosenRow(options, result);
  if (!options.Map.Measure.empty()) MapOf(options, result);
}

void WriteStudyPicture(const StudyCommand& options, const std::string& table,
                       StudyResponses responses) {
  if (options.Picture.empty()) return;
  const ResultTable result(table);
  if (!options.Map.Measure.empty()) {
    WritePicture(MapOf(options, result), options.Picture);
    return;
  }
  responses.Chosen = ChosenRow(options, result);
  if (responses.Chosen) responses.ChosenText = result.Described(*responses.Chosen);
  WritePicture(std::move(responses), options.Picture);
}

}  // namespace torvane::cli
