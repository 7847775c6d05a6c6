#pragma once

#include "cli/study/design.h"
#include "cli/study/study.h"

namespace torvane::cli {

/// The runs that the options ask for.
StudyDesign MakeDesign(const StudyOptions& options);

/// Sets what the run varies.
void Apply(ZelBenchTop& bench, const StudyDesign& design, std::size_t run);

/// Says before the first run what is wrong with the last one.
void CheckRuns(const StudyDesign& design, ZelModel& model, Console& console);

/// The runs of share "K/N", or all of them without one.
std::vector<std::size_t> RunsOfShare(const std::string& shard, std::size_t runs);

/// How many processes are to run at a time.
int Processes(const StudyOptions& options);

}  // namespace torvane::cli
