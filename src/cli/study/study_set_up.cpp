#include "cli/study/study_set_up.h"

#include <algorithm>
#include <set>
#include <thread>

#include "cli/assignment.h"
#include "cli/command_error.h"
#include "cli/settings.h"
#include "core/text.h"

namespace torvane::cli {
namespace {

constexpr int DefaultSeed = 1;
constexpr int MostJobs = 1024;

}  // namespace

StudyDesign MakeDesign(const StudyOptions& options) {
  if (options.Seed && !options.Sample) throw UsageError("--seed needs --sample");
  if (options.Vary.empty()) {
    if (options.Sample) throw UsageError("--sample needs ranges to sample, with --vary");
    if (options.Files.size() != 2) {
      throw UsageError("a study needs a table and a model, or a model and --vary");
    }
    return ReadTable(options.Files.front());
  }
  if (options.Files.size() != 1) {
    throw UsageError("with --vary a study needs a model and no table");
  }
  std::vector<VaryRange> ranges;
  for (const std::string& text : options.Vary) ranges.push_back(ParseVaryRange(text));
  if (!options.Sample) return MakeGrid(ranges);
  const int seed = options.Seed.value_or(DefaultSeed);
  return MakeSamples(ranges, *options.Sample, static_cast<std::uint64_t>(seed));
}

void Apply(ZelBenchTop& bench, const StudyDesign& design, std::size_t run) {
  for (std::size_t k = 0; k < design.Names.size(); ++k) {
    ApplyConstantOrWave(bench, design.Names[k], design.Runs[run][k]);
  }
}

void CheckRuns(const StudyDesign& design, ZelModel& model, Console& console) {
  if (std::set<std::string>(design.Names.begin(), design.Names.end()).size() !=
      design.Names.size()) {
    throw UsageError("a study has each constant or generator setting once");
  }
  for (std::size_t run = 0; run < design.Runs.size(); ++run) {
    console.SetPlace(design.Places[run]);
    try {
      Apply(model.Bench(), design, run);
    } catch (const CommandError& error) {
      throw CommandError(error.Code(), design.Places[run] + error.what());
    }
  }
  console.SetPlace("");
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
  if (*options.Jobs > MostJobs) NoteLimited("--jobs", std::to_string(MostJobs));
  return std::min(*options.Jobs, MostJobs);
}

}  // namespace torvane::cli
