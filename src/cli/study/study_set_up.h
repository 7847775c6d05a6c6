#pragma once

#include "cli/study/study.h"
#include "study/design.h"
#include "study/identity.h"

namespace torvane::cli {

/// The runs that the options ask for.
StudyDesign MakeDesign(const StudyOptions& options);

/// What tells the study from another one; `model` is set up for its measurement, and no run's
/// settings are on it yet.
StudyIdentity IdentityOf(const StudyOptions& options, const StudyDesign& design,
                         const ZelModel& model);

/// The range in NAME=FROM:TO[:COUNT][:log]; samples go without a count, a grid needs one.
StudyRange ParseVaryRange(const std::string& text, bool sampled);

/// The runs of share "K/N", or all of them without one.
std::vector<std::size_t> RunsOfShare(const std::string& shard, std::size_t runs);

/// How many processes are to run at a time.
int Processes(const StudyOptions& options);

}  // namespace torvane::cli
