#include "cli/study/design.h"

#include <cmath>

#include "cli/assignment.h"
#include "cli/command_error.h"
#include "cli/study/study_files.h"
#include "core/csv_table.h"
#include "core/text.h"

namespace torvane::cli {
namespace {

constexpr int ValueDigits = 12;

std::vector<std::string> Split(const std::string& text, char at) {
  std::vector<std::string> parts{""};
  for (const char c : text) {
    if (c == at) {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  return parts;
}

CommandError BadRange(const std::string& text) {
  return UsageError("--vary needs NAME=FROM:TO:COUNT or NAME=FROM:TO:COUNT:log, not \"" + text +
                    "\"");
}

void CheckCount(std::size_t runs) {
  if (runs > MostRuns) throw UsageError("a study has at most a million runs");
}

/// SplitMix64: a state that goes on by a fixed odd number, its bits mixed.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  std::uint64_t Next() {
    std::uint64_t z = state_ += 0x9e3779b97f4a7c15U;
    z = (z ^ (z >> 30U)) * 0xbf58476d1ce4e5b9U;
    z = (z ^ (z >> 27U)) * 0x94d049bb133111ebU;
    return z ^ (z >> 31U);
  }
  /// 0 up to, but not including, 1.
  double Share() { return static_cast<double>(Next() >> 11U) * 0x1p-53; }

 private:
  std::uint64_t state_;
};

// A whole number for each sample, all of them once (Fisher and Yates).
std::vector<int> Shuffled(int count, Random& random) {
  std::vector<int> numbers(static_cast<std::size_t>(count));
  for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = static_cast<int>(i);
  for (std::size_t i = numbers.size(); i > 1; --i) {
    std::swap(numbers[i - 1], numbers[random.Next() % i]);
  }
  return numbers;
}

StudyDesign Empty(const std::vector<VaryRange>& ranges, std::size_t runs) {
  CheckCount(runs);
  StudyDesign design;
  for (const VaryRange& range : ranges) design.Names.push_back(range.Name);
  design.Runs.resize(runs);
  for (std::size_t run = 1; run <= runs; ++run) {
    design.Places.push_back("run " + std::to_string(run) + ": ");
  }
  return design;
}

}  // namespace

std::string VaryRange::At(double share) const {
  const double value =
      Log ? From * std::exp(share * std::log(To / From)) : From + share * (To - From);
  return FormatGeneral(share == 1.0 ? To : value, ValueDigits, 2);
}

VaryRange ParseVaryRange(const std::string& text) {
  const Assignment assignment = SplitAssignment("--vary", text);
  std::vector<std::string> parts = Split(assignment.Value, ':');
  VaryRange range;
  range.Name = assignment.Name;
  if (parts.back() == "log") {
    range.Log = true;
    parts.pop_back();
  }
  if (parts.size() < 2 || parts.size() > 3) throw BadRange(text);
  const auto from = ParseNumber(parts[0]);
  const auto to = ParseNumber(parts[1]);
  if (!from || !to) throw BadRange(text);
  range.From = *from;
  range.To = *to;
  if (range.Log && !(range.From * range.To > 0.0)) {
    throw UsageError("--vary " + text + ": a logarithmic range has both ends on one side of 0");
  }
  if (!std::isfinite(range.Log ? std::log(range.To / range.From) : range.To - range.From)) {
    throw UsageError("--vary " + text + ": the range is too wide");
  }
  if (parts.size() < 3) return range;
  range.Count = ParseInteger(parts[2]);
  if (!range.Count || *range.Count < 1) throw BadRange(text);
  return range;
}

StudyDesign ReadTable(const std::string& path) {
  const std::vector<CsvRow> rows = ParseCsv(ReadStudyFile(path));
  if (rows.empty()) throw UsageError(path + " is empty; its first line names the columns");
  if (rows.size() == 1) throw UsageError(path + " has no row below its first line");
  CheckCount(rows.size() - 1);
  StudyDesign design;
  design.Names = rows.front().Fields;
  for (std::size_t k = 0; k < design.Names.size(); ++k) {
    if (!design.Names[k].empty()) continue;
    throw UsageError(path + ": column " + std::to_string(k + 1) + " has no name");
  }
  for (std::size_t i = 1; i < rows.size(); ++i) {
    const CsvRow& row = rows[i];
    const std::string place = path + ":" + std::to_string(row.Line) + ": ";
    if (row.Fields.size() != design.Names.size()) {
      throw UsageError(place + "a row needs " + std::to_string(design.Names.size()) +
                       " fields, not " + std::to_string(row.Fields.size()));
    }
    design.Runs.push_back(row.Fields);
    design.Places.push_back(place);
  }
  return design;
}

StudyDesign MakeGrid(const std::vector<VaryRange>& ranges) {
  std::size_t runs = 1;
  for (const VaryRange& range : ranges) {
    if (!range.Count) throw UsageError("--vary " + range.Name + " needs a COUNT without --sample");
    runs *= static_cast<std::size_t>(*range.Count);
    CheckCount(runs);
  }
  StudyDesign design = Empty(ranges, runs);
  for (std::size_t run = 0; run < runs; ++run) {
    std::size_t rest = run;
    std::vector<std::string>& values = design.Runs[run];
    values.resize(ranges.size());
    for (std::size_t k = ranges.size(); k-- > 0;) {
      const auto count = static_cast<std::size_t>(*ranges[k].Count);
      const std::size_t i = rest % count;
      rest /= count;
      const double share = static_cast<double>(i) / static_cast<double>(count > 1 ? count - 1 : 1);
      values[k] = ranges[k].At(share);
    }
  }
  return design;
}

StudyDesign MakeSamples(const std::vector<VaryRange>& ranges, int samples, std::uint64_t seed) {
  if (samples < 1) throw UsageError("--sample must be above 0, not " + std::to_string(samples));
  for (const VaryRange& range : ranges) {
    if (range.Count) throw UsageError("--vary " + range.Name + " has a COUNT, but --sample counts");
  }
  StudyDesign design = Empty(ranges, static_cast<std::size_t>(samples));
  Random random(seed);
  for (const VaryRange& range : ranges) {
    const std::vector<int> shares = Shuffled(samples, random);
    for (std::size_t run = 0; run < design.Runs.size(); ++run) {
      design.Runs[run].push_back(range.At((shares[run] + random.Share()) / samples));
    }
  }
  return design;
}

}  // namespace torvane::cli
