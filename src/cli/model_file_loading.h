#pragma once

#include <memory>
#include <string>

#include "cli/console.h"
#include "core/model.h"

namespace torvane::cli {

/// Loads a model file; what is wrong with it is reported with its line. A file that cannot be read
/// to its end or names no model of the catalogue is a CommandError of ExitCode::File.
std::unique_ptr<ZelModel> OpenModelFile(const std::string& path, Console& console);

/// As OpenModelFile, and notes what loading passes over in silence.
void CheckModelFile(const std::string& path, Console& console);

}  // namespace torvane::cli
