#pragma once

#include <memory>
#include <string>

#include "core/model.h"
#include "workbench/supervisor.h"

namespace torvane {

/// The file's text; one that cannot be read to its end is a WorkFault of WorkFault::Kind::File.
std::string ReadModelFile(const std::string& path);

/// Loads a model file's text, as OpenModelFile.
std::unique_ptr<ZelModel> OpenModelText(const std::string& path, const std::string& text,
                                        Supervisor& supervisor);

/// Loads a model file; what is wrong with it is reported with its line. A file that cannot be read
/// to its end or names no model of the catalogue is a WorkFault of WorkFault::Kind::File.
std::unique_ptr<ZelModel> OpenModelFile(const std::string& path, Supervisor& supervisor);

/// As OpenModelFile, and notes what loading passes over in silence.
void CheckModelFile(const std::string& path, Supervisor& supervisor);

}  // namespace torvane
