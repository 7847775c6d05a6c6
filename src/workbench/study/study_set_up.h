#pragma once

#include "study/design.h"
#include "study/identity.h"
#include "study/measures.h"
#include "workbench/study/study.h"

namespace torvane {

/// The runs that the options ask for.
StudyDesign MakeDesign(const StudyOptions& options);

/// What tells the study from another one; `model` is set up for its measurement, and no run's
/// settings are on it yet.
StudyIdentity IdentityOf(const StudyOptions& options, const StudyDesign& design,
                         const ZelModel& model);

/// The units of a study's settings and then of its measures, as UnitsPart has them; the settings
/// are known to be the model's.
std::string UnitsOfStudy(const StudyOptions& options, const StudyDesign& design,
                         const MeasureSet& measures, const ZelModel& model);

/// Who says which values of a range are taken: a grid's or a list's count does, samples and a
/// search go without.
enum class VaryValues { OfGrid, Listed, Sampled, Searched };

/// The range in NAME=FROM:TO[:COUNT][:log].
StudyRange ParseVaryRange(const std::string& text, VaryValues values);

/// The runs of share "K/N", or all of them without one.
std::vector<std::size_t> RunsOfShare(const std::string& shard, std::size_t runs);

/// How many processes are to run at a time.
int Processes(const StudyOptions& options);

}  // namespace torvane
