#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace torvane {

/// The response of one run of a study, in display units.
struct StudyTrace {
  std::size_t Points = 400;  ///< that are taken of the run, about
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

/// One measure of a study's runs over two of its constants, a slice for each value of the others.
struct StudyMap {
  /// A run at its place on the map.
  struct Run {
    double X = 0.0;
    double Y = 0.0;
    std::optional<double> Value;  ///< nothing where it could not be measured
    std::size_t Row = 0;          ///< in the table
    bool Meets = true;            ///< what is required
  };
  /// The runs that have the same values of the other constants.
  struct Slice {
    std::string Text;  ///< the others' values; empty of a map without slices
    std::vector<Run> Runs;
  };
  std::string XName;
  std::string YName;
  std::string Measure;
  std::vector<Slice> Slices;
  std::optional<std::size_t> Chosen;  ///< row of the table
  std::optional<std::pair<double, double>> Limits;
  bool Contours = false;
  std::vector<double> Levels{};  ///< of the contours, rising; chosen for the range when empty
};

}  // namespace torvane
