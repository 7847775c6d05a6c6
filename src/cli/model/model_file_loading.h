#pragma once

#include <memory>
#include <string>

#include "cli/io/console.h"
#include "core/model.h"

namespace torvane::cli {

/// The file's text; one that cannot be read to its end is a CommandError of ExitCode::File.
std::string ReadModelFile(const std::string& path);

/// Loads a model file's text, as OpenModelFile.
std::unique_ptr<ZelModel> OpenModelText(const std::string& path, const std::string& text,
                                        Console& console);

/// Loads a model file; what is wrong with it is reported with its line. A file that cannot be read
/// to its end or names no model of the catalogue is a CommandError of ExitCode::File.
std::unique_ptr<ZelModel> OpenModelFile(const std::string& path, Console& console);

/// As OpenModelFile, and notes what loading passes over in silence.
void CheckModelFile(const std::string& path, Console& console);

}  // namespace torvane::cli
