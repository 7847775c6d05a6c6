#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/model.h"

namespace torvane {

/// What a study varies: the names of constants and generator settings, and for each run their
/// values as a user would type them.
struct StudyDesign {
  std::vector<std::string> Names;
  std::vector<std::vector<std::string>> Runs;
  /// Of a table: its file, and the line of each run.
  std::string File;
  std::vector<int> Lines;

  /// How a message about a run begins: "FILE:LINE: " or "run N: ".
  std::string Place(std::size_t run) const;
};

/// A study has no more runs.
inline constexpr std::size_t MostRuns = 1000000;

/// A range of values.
struct StudyRange {
  std::string Name;
  double From = 0.0;
  double To = 0.0;
  std::optional<int> Count;  ///< values of a grid; one without it
  bool Log = false;

  /// What makes it no range; empty for nothing.
  std::string Fault() const;
  /// The value at a share of the range, 0 to 1, with twelve significant digits, so that no
  /// processor's last digit of a logarithm makes another study.
  std::string At(double share) const;
};

/// All combinations, those of the last range in turn first.
StudyDesign MakeGrid(const std::vector<StudyRange>& ranges);

/// A Latin hypercube: each range is cut into as many equal shares as there are samples, and each
/// share holds one. The same seed gives the same samples on every machine.
StudyDesign MakeSamples(const std::vector<StudyRange>& ranges, int samples, std::uint64_t seed);

/// The runs of a table: a column for each name and a row for each run. A file that is no such
/// table, or beyond 64 MiB, is a StudyFault.
StudyDesign ReadTable(const std::string& path);

/// A run's settings as its model took them.
struct AppliedRun {
  std::vector<std::string> Settings;  ///< as they were given unless limited
  std::vector<std::string> Remarks;   ///< of those that were limited
};
/// Sets the model's constants and waves to those of a run of the study.
AppliedRun ApplyRun(const ZelBenchTop& bench, const StudyDesign& design, std::size_t run);

/// Says before the first run what is wrong with the last one: a StudyFault with its place, and a
/// note for each setting that is limited.
void CheckDesign(const StudyDesign& design, ZelModel& model);

}  // namespace torvane
