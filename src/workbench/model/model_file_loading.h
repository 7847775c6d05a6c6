#pragma once

#include <memory>
#include <optional>
#include <string>

#include "core/model.h"
#include "workbench/supervisor.h"

namespace torvane {

/// The file's text; one that cannot be read to its end is a WorkFault of WorkFault::Kind::File.
std::string ReadModelFile(const std::string& path);

/// A loop of the user's own: where its file was, and what stood in it.
struct LoopSource {
  std::string Path;
  std::string Text;
};

/// Loads a model file's text, as OpenModelFile. A loop that is given is the one that it is for.
std::unique_ptr<ZelModel> OpenModelText(const std::string& path, const std::string& text,
                                        Supervisor& supervisor,
                                        const std::optional<LoopSource>& loop = {});

/// Loads a model file; what is wrong with it is reported with its line. A file that cannot be read
/// to its end or names no model of the catalogue is a WorkFault of WorkFault::Kind::File.
std::unique_ptr<ZelModel> OpenModelFile(const std::string& path, Supervisor& supervisor);

/// As OpenModelFile, and notes what loading passes over in silence.
void CheckModelFile(const std::string& path, Supervisor& supervisor);

}  // namespace torvane
