#include "workbench/study/study_set_up.h"

#include <algorithm>
#include <thread>

#include "core/csv.h"
#include "core/files/loop_record.h"
#include "core/files/model_file.h"
#include "core/messages.h"
#include "core/text.h"
#include "core/version.h"
#include "loops/own_loop.h"
#include "study/setting.h"
#include "workbench/measure/measurement.h"
#include "workbench/model/assignment.h"
#include "workbench/work_fault.h"

namespace torvane {
namespace {

constexpr int DefaultSeed = 1;
constexpr int MostJobs = 1024;

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

}  // namespace

StudyRange ParseVaryRange(const std::string& text, VaryValues values) {
  const bool counted = values == VaryValues::OfGrid || values == VaryValues::Listed;
  const auto bad = [&] {
    const std::string form = counted ? "NAME=FROM:TO:COUNT" : "NAME=FROM:TO";
    return UsageError("--vary needs " + form + " or " + form + ":log, not \"" + text + "\"");
  };
  const Assignment assignment = SplitAssignment("--vary", text);
  std::vector<std::string> parts = Split(assignment.Value, ':');
  StudyRange range;
  range.Name = assignment.Name;
  if (parts.back() == "log") {
    range.Log = true;
    parts.pop_back();
  }
  if (parts.size() < 2 || parts.size() > 3) throw bad();
  const auto from = ParseNumber(parts[0]);
  const auto to = ParseNumber(parts[1]);
  if (!from || !to) throw bad();
  range.From = *from;
  range.To = *to;
  const std::string fault = range.Fault();
  if (!fault.empty()) throw UsageError("--vary " + text + ": " + fault);
  if (parts.size() == 3) {
    range.Count = ParseInteger(parts[2]);
    if (!range.Count || *range.Count < 1) throw bad();
  }
  if (counted != range.Count.has_value()) {
    throw UsageError("--vary " + range.Name + [&] {
      switch (values) {
        case VaryValues::OfGrid:
          return " needs a COUNT without --sample";
        case VaryValues::Listed:
          return " needs a COUNT";
        case VaryValues::Sampled:
          return " has a COUNT, but --sample counts";
        case VaryValues::Searched:
          break;
      }
      return " has a COUNT, but the search chooses the values";
    }());
  }
  return range;
}

StudyDesign MakeDesign(const StudyOptions& options) {
  if (options.Design) return *options.Design;
  if (options.Vary.empty()) {
    if (options.Files.size() != 2) {
      throw UsageError("a study needs a table and a model, or a model and --vary");
    }
    return ReadTable(options.Files.front());
  }
  if (options.Files.size() != 1) {
    throw UsageError("with --vary a study needs a model and no table");
  }
  if (options.Sample && *options.Sample < 1) {
    throw UsageError("--sample must be above 0, not " + std::to_string(*options.Sample));
  }
  std::vector<StudyRange> ranges;
  for (const std::string& text : options.Vary) {
    ranges.push_back(
        ParseVaryRange(text, options.Sample ? VaryValues::Sampled : VaryValues::OfGrid));
  }
  if (!options.Sample) return MakeGrid(ranges);
  const int seed = options.Seed.value_or(DefaultSeed);
  return MakeSamples(ranges, *options.Sample, static_cast<std::uint64_t>(seed));
}

StudyIdentity IdentityOf(const StudyOptions& options, const StudyDesign& design,
                         const ZelModel& model) {
  StudyIdentity identity;
  identity.Add("program", Version());
  identity.Add("model", model.Name());
  for (const auto& [name, value] : options.Given) identity.Add(name, value);
  // Where an own loop's file is makes no other study, what stands in it does.
  const std::string setUp = ModelFileText(model);
  const std::string loop = LoopRecord(model);
  identity.AddSum("set-up",
                  setUp.substr(0, setUp.find(loop)) + setUp.substr(setUp.find(loop) + loop.size()));
  if (const auto* const own = dynamic_cast<const loops::OwnLoop*>(&model)) {
    identity.AddSum("loop", own->Text());
  }
  identity.Add(RunsPart, std::to_string(design.Runs.size()));
  std::string table = CsvLine(design.Names);
  for (const auto& run : design.Runs) table += CsvLine(run);
  identity.AddSum("table of runs", table);
  if (!options.Shard.empty()) identity.Add(SharePart, options.Shard);
  return identity;
}

std::string UnitsOfStudy(const StudyOptions& options, const StudyDesign& design,
                         const MeasureSet& measures, const ZelModel& model) {
  std::vector<std::string> units;
  for (const std::string& name : design.Names) {
    units.push_back(ModelSetting::Named(model.Bench(), name).Unit());
  }
  for (const std::string& unit : UnitsOfMeasures(model, options.Measure, measures)) {
    units.push_back(unit);
  }
  return CsvLine(units);
}

// Each Nth run from the Kth on, so that a share that is missing shows.
std::vector<std::size_t> RunsOfShare(const std::string& shard, std::size_t runs) {
  std::size_t first = 0;
  std::size_t shares = 1;
  if (!shard.empty()) {
    const auto slash = shard.find('/');
    const auto k = ParseInteger(shard.substr(0, slash));
    const auto n = slash == std::string::npos ? k : ParseInteger(shard.substr(slash + 1));
    if (slash == std::string::npos || !k || !n || *k < 1 || *k > *n) {
      throw UsageError("--shard needs K/N with K from 1 to N, not \"" + shard + "\"");
    }
    first = static_cast<std::size_t>(*k) - 1;
    shares = static_cast<std::size_t>(*n);
  }
  std::vector<std::size_t> share;
  for (std::size_t run = first; run < runs; run += shares) share.push_back(run);
  return share;
}

int Processes(const StudyOptions& options) {
  if (!options.Jobs) return static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
  if (*options.Jobs < 1) {
    throw UsageError("--jobs must be above 0, not " + std::to_string(*options.Jobs));
  }
  if (*options.Jobs > MostJobs) Note("--jobs is limited to " + std::to_string(MostJobs));
  return std::min(*options.Jobs, MostJobs);
}

}  // namespace torvane
