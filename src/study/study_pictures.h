#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace torvane {

/// The response of one run of a study, in display units.
struct StudyTrace {
  std::vector<float> Times;  ///< since just before the step
  std::vector<float> Values;
};

/// The responses of a study's runs.
struct StudyResponses {
  std::string Signal;
  std::string TimeUnit;
  std::vector<StudyTrace> Runs;  ///< empty traces of runs without one
  std::optional<std::size_t> Chosen;
  std::string ChosenText;
};

/// One measure of a study's runs over two of its constants.
struct StudyMap {
  struct Run {
    double X = 0.0;
    double Y = 0.0;
    std::optional<double> Value;  ///< nothing where it could not be measured
  };
  std::string XName;
  std::string YName;
  std::string Measure;
  std::vector<Run> Runs;
  std::optional<std::size_t> Chosen;
};

}  // namespace torvane
