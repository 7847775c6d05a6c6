#pragma once

#include <memory>
#include <string>

#include "core/model.h"
#include "models/catalogue.h"
#include "workbench/supervisor.h"

namespace torvane {

/// Whether the text stands for a file with a loop of the user's own.
bool NamesLoop(const std::string& text);

/// Builds the model of such a file. All that is wrong with it is printed at its place; it is then a
/// WorkFault of WorkFault::Kind::File.
std::unique_ptr<ZelModel> OpenLoop(const std::string& path, Supervisor& supervisor);

/// As OpenLoop, and prints what is doubtful too.
void CheckLoop(const std::string& path, Supervisor& supervisor);

/// Adds the loop that a model file's text is for to the catalogue, when it is for one.
void AddLoopOf(const std::string& modelFile, const std::string& text, Catalogue& catalogue,
               Supervisor& supervisor);

/// Adds the loop in the text, whose file was at the path, to the catalogue under that name.
void AddLoop(const std::string& name, const std::string& path, const std::string& text,
             Catalogue& catalogue, Supervisor& supervisor);

}  // namespace torvane
