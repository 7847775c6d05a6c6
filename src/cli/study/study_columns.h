#pragma once

#include <vector>

#include "cli/io/table.h"
#include "workbench/study/study.h"

namespace torvane::cli {

/// The columns of what is measured of a run, the reason last.
std::vector<Column> MeasureColumns(const ZelModel& model, const MeasureOptions& options,
                                   const MeasureSet& set);

/// A column for each constant or generator setting of those names.
std::vector<Column> SettingColumns(const ZelModel& model, const std::vector<std::string>& names);

/// The columns of a study's table.
std::vector<Column> StudyColumns(Study& study);

/// Those of a table that is there, whose model is not. Without the units of its settings and
/// measures those alone have one whose unit is always the same.
std::vector<Column> TableColumns(const std::string& table, const std::vector<std::string>& units);

}  // namespace torvane::cli
