#pragma once

#include <optional>
#include <string>

#include "cli/io/console.h"
#include "cli/io/table.h"
#include "study/study_pictures.h"
#include "workbench/study/study.h"

namespace torvane::cli {

/// Which map is drawn, as it was typed.
struct StudyMapChoice {
  std::string Measure;  ///< none when empty
  std::string Axes;     ///< "X,Y"
  std::string Limits;   ///< "LOW:HIGH", of the colours
  bool Contours = false;
  std::string Levels;  ///< "A,B,...", of the contours
};

/// What the command "study" is told.
struct StudyCommand {
  StudyOptions Study;  ///< its Files are the results to merge with Merge
  bool Merge = false;
  std::string Out;
  std::string Picture;
  std::optional<int> Chosen;
  StudyMapChoice Map;
  TableForm Form;
};

/// Measures every run of a study, or of a share of it.
void RunStudy(const StudyCommand& command, Console& console);

/// Puts the results of the shares of a study together.
void MergeStudies(const StudyCommand& command);

/// Says, if it is asked for, which run of the table has the best of a measure among those that meet
/// what is required.
void TellStudyBest(const StudyCommand& command, const std::string& table);

/// Refuses what does not make a picture of the table, whose measures may still be empty.
void CheckStudyPicture(const StudyCommand& command, const std::string& table);

/// Draws the responses that were collected or, with Map, a measure of the rows, which begin with
/// the captions.
void WriteStudyPicture(const StudyCommand& command, const std::string& table,
                       StudyResponses responses);

}  // namespace torvane::cli
