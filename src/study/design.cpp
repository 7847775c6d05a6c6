#include "study/design.h"

#include <cmath>
#include <set>

#include "core/csv_table.h"
#include "core/files/text_file.h"
#include "core/messages.h"
#include "core/text.h"
#include "study/setting.h"
#include "study/study_fault.h"

namespace torvane {
namespace {

constexpr int ValueDigits = 12;
constexpr std::size_t MaxTableSize = std::size_t{64} << 20U;

void CheckCount(std::size_t runs) {
  if (runs > MostRuns) throw StudyFault("a study has at most a million runs");
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

void CheckNames(const StudyDesign& design) {
  for (std::size_t k = 0; k < design.Names.size(); ++k) {
    if (!design.Names[k].empty()) continue;
    throw StudyFault(design.File + ": column " + std::to_string(k + 1) + " has no name");
  }
}

// A whole number for each sample, all of them once (Fisher and Yates).
std::vector<int> Shuffled(int count, Random& random) {
  std::vector<int> numbers(static_cast<std::size_t>(count));
  for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = static_cast<int>(i);
  for (std::size_t i = numbers.size(); i > 1; --i) {
    std::swap(numbers[i - 1], numbers[random.Next() % i]);
  }
  return numbers;
}

StudyDesign Empty(const std::vector<StudyRange>& ranges, std::size_t runs) {
  CheckCount(runs);
  StudyDesign design;
  for (const StudyRange& range : ranges) design.Names.push_back(range.Name);
  design.Runs.resize(runs);
  return design;
}

}  // namespace

std::string StudyDesign::Place(std::size_t run) const {
  if (Lines.empty()) return "run " + std::to_string(run + 1) + ": ";
  return File + ":" + std::to_string(Lines[run]) + ": ";
}

std::string StudyRange::At(double share) const {
  const double value =
      Log ? From * std::exp(share * std::log(To / From)) : From + share * (To - From);
  return FormatGeneral(share == 1.0 ? To : value, ValueDigits, 2);
}

std::string StudyRange::Fault() const {
  if (Log && !(From * To > 0.0)) return "a logarithmic range has both ends on one side of 0";
  const bool finite = std::isfinite(Log ? std::log(To / From) : To - From);
  return finite ? "" : "the range is too wide";
}

StudyDesign MakeGrid(const std::vector<StudyRange>& ranges) {
  std::size_t runs = 1;
  for (const StudyRange& range : ranges) {
    runs *= static_cast<std::size_t>(range.Count.value_or(1));
    CheckCount(runs);
  }
  StudyDesign design = Empty(ranges, runs);
  for (std::size_t run = 0; run < runs; ++run) {
    std::size_t rest = run;
    std::vector<std::string>& values = design.Runs[run];
    values.resize(ranges.size());
    for (std::size_t k = ranges.size(); k-- > 0;) {
      const auto count = static_cast<std::size_t>(ranges[k].Count.value_or(1));
      const std::size_t i = rest % count;
      rest /= count;
      const double share = static_cast<double>(i) / static_cast<double>(count > 1 ? count - 1 : 1);
      values[k] = ranges[k].At(share);
    }
  }
  return design;
}

StudyDesign MakeSamples(const std::vector<StudyRange>& ranges, int samples, std::uint64_t seed) {
  StudyDesign design = Empty(ranges, static_cast<std::size_t>(samples));
  Random random(seed);
  for (const StudyRange& range : ranges) {
    const std::vector<int> shares = Shuffled(samples, random);
    for (std::size_t run = 0; run < design.Runs.size(); ++run) {
      design.Runs[run].push_back(range.At((shares[run] + random.Share()) / samples));
    }
  }
  return design;
}

StudyDesign ReadTable(const std::string& path) {
  std::string text;
  const std::string fault = ReadTextFile(path, MaxTableSize, text);
  if (!fault.empty()) throw StudyFault(StudyFault::Kind::File, fault);
  StudyDesign design;
  design.File = path;
  CsvReader rows(text);
  for (CsvRow row; rows.Next(row);) {
    const std::string place = path + ":" + std::to_string(row.Line) + ": ";
    if (!row.Whole) throw StudyFault(place + "no row of a study is as long as this");
    if (design.Names.empty()) {
      design.Names = std::move(row.Fields);
      CheckNames(design);
      continue;
    }
    CheckCount(design.Runs.size() + 1);
    if (row.Fields.size() != design.Names.size()) {
      throw StudyFault(place + "a row needs " + std::to_string(design.Names.size()) +
                       " fields, not " + std::to_string(row.Fields.size()));
    }
    for (const std::string& field : row.Fields) {
      if (field.find_first_of("\r\n") != std::string::npos) {
        throw StudyFault(place + "a value has a line end");
      }
    }
    design.Runs.push_back(std::move(row.Fields));
    design.Lines.push_back(row.Line);
  }
  if (design.Names.empty()) {
    throw StudyFault(path + " is empty; its first line names the columns");
  }
  if (design.Runs.empty()) throw StudyFault(path + " has no row below its first line");
  return design;
}

AppliedRun ApplyRun(const ZelBenchTop& bench, const StudyDesign& design, std::size_t run) {
  std::vector<ModelSetting> settings;
  for (std::size_t k = 0; k < design.Names.size(); ++k) {
    settings.push_back(ModelSetting::Named(bench, design.Names[k]));
    settings.back().Set(design.Runs[run][k]);
  }
  AppliedRun applied{design.Runs[run], {}};
  for (std::size_t k = 0; k < settings.size(); ++k) {
    const std::string remark = settings[k].Remark();
    if (remark.empty()) continue;
    applied.Settings[k] = settings[k].Text();
    applied.Remarks.push_back(remark);
  }
  return applied;
}

void CheckDesign(const StudyDesign& design, ZelModel& model) {
  if (std::set<std::string>(design.Names.begin(), design.Names.end()).size() !=
      design.Names.size()) {
    throw StudyFault("a study has each constant or generator setting once");
  }
  for (std::size_t run = 0; run < design.Runs.size(); ++run) {
    try {
      for (const std::string& remark : ApplyRun(model.Bench(), design, run).Remarks) {
        Note(design.Place(run) + remark);
      }
    } catch (const StudyFault& fault) {
      throw StudyFault(design.Place(run) + fault.what());
    }
  }
}

}  // namespace torvane
