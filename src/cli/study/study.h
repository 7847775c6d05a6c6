#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/measure/measurement.h"
#include "study/study_pictures.h"

namespace torvane::cli {

/// Which map is drawn, as it was typed.
struct StudyMapChoice {
  std::string Measure;  ///< none when empty
  std::string Axes;     ///< "X,Y"
  std::string Limits;   ///< "LOW:HIGH", of the colours
  bool Contours = false;
};

/// What the command "study" is told.
struct StudyOptions {
  std::vector<std::string> Files;  ///< [STUDY.csv] MODEL, or the results to merge
  std::vector<std::string> Vary;
  std::optional<int> Sample;
  std::optional<int> Seed;
  std::optional<int> Jobs;
  std::string Shard;
  bool Merge = false;
  std::string Out;
  std::string Picture;
  std::optional<int> Chosen;
  StudyMapChoice Map;
  std::vector<std::string> Require;
  std::string Best;
  MeasureOptions Measure;
  /// The options that decide what comes of a run, as they were given: names and values.
  std::vector<std::pair<std::string, std::string>> Given;
};

/// Measures every run of a study, or of a share of it.
void RunStudy(StudyOptions options, Console& console);

/// Puts the results of the shares of a study together.
void MergeStudies(const StudyOptions& options);

/// Refuses a --best that the study does not measure, or that a run cannot be the best of.
void CheckStudyBest(const StudyOptions& options, const MeasureSet& set);

/// Says, if it is asked for, which run of the table has the best of a measure among those that meet
/// what is required.
void TellStudyBest(const StudyOptions& options, const std::string& table);

/// Refuses what does not make a picture of the table, whose measures may still be empty.
void CheckStudyPicture(const StudyOptions& options, const std::string& table);

/// Draws the responses that were collected or, with Map, a measure of the rows, which begin with
/// the captions.
void WriteStudyPicture(const StudyOptions& options, const std::string& table,
                       StudyResponses responses);

}  // namespace torvane::cli
