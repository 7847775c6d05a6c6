#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "study/study_pictures.h"

namespace torvane {

/// What came of one run of a study.
struct StudyRow {
  std::size_t Run = 0;                ///< among all runs of the study, from 0
  std::vector<std::string> Settings;  ///< as they ran
  std::vector<std::optional<double>> Measures;
  std::string Reason;  ///< why a setting or a measure is not what was asked for

  bool HasMeasures() const;
};

/// A row and, where it is to be drawn, the response, as a process hands them to another one of the
/// same program.
struct RunResult {
  StudyRow Row;
  StudyTrace Trace;

  std::string Packed() const;
  static RunResult Unpacked(const std::string& packed);
};

/// The columns of a study's table: Run, the settings, Measures (how many of those that follow the
/// run has), the measures, Reason. The last column called so ends the settings.
inline constexpr const char* RunCaption = "Run";
inline constexpr const char* MeasuresCaption = "Measures";
inline constexpr const char* ReasonCaption = "Reason";

/// The fields of measures: numbers in their shortest exact form, nothing where there is none.
std::vector<std::string> MeasureFields(const std::vector<std::optional<double>>& measures);
/// Remarks as one field, one after the other in one line.
std::string Joined(const std::vector<std::string>& remarks);

/// The line of captions, line end included.
std::string HeadLine(const std::vector<std::string>& settings,
                     const std::vector<std::string>& measures);
/// The line of a row, line end included.
std::string RowLine(const StudyRow& row);

}  // namespace torvane
