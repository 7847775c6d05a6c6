#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace torvane::cli {

/// What a study varies: the names of constants and generator settings, and for each run their
/// values as a user would type them.
struct StudyDesign {
  std::vector<std::string> Names;
  std::vector<std::vector<std::string>> Runs;
  /// Where each run stands, for messages about it: "FILE:LINE: " or "run N: ".
  std::vector<std::string> Places;
};

/// A study has no more runs.
inline constexpr std::size_t MostRuns = 1000000;

/// A range of values from the text "NAME=FROM:TO:COUNT[:log]".
struct VaryRange {
  std::string Name;
  double From = 0.0;
  double To = 0.0;
  std::optional<int> Count;
  bool Log = false;

  /// The value at a share of the range, 0 to 1, with twelve significant digits, so that no
  /// processor's last digit of a logarithm makes another study.
  std::string At(double share) const;
};

/// Anything that is no range is wrong usage; the count is left out when samples are taken.
VaryRange ParseVaryRange(const std::string& text);

/// The runs of a table: a column for each name and a row for each run. A file that is no such table
/// is wrong usage.
StudyDesign ReadTable(const std::string& path);

/// All combinations, those of the last range in turn first. A range without a count is wrong usage.
StudyDesign MakeGrid(const std::vector<VaryRange>& ranges);

/// A Latin hypercube: each range is cut into as many equal shares as there are samples, and each
/// share holds one. The same seed gives the same samples on every machine. A range with a count is
/// wrong usage.
StudyDesign MakeSamples(const std::vector<VaryRange>& ranges, int samples, std::uint64_t seed);

}  // namespace torvane::cli
