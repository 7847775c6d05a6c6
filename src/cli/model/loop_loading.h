#pragma once

#include <memory>
#include <string>

#include "cli/io/console.h"
#include "core/model.h"
#include "models/catalogue.h"

namespace torvane::cli {

/// Whether the text stands for a file with a loop of the user's own.
bool NamesLoop(const std::string& text);

/// Builds the model of such a file. All that is wrong with it is printed at its place; it is then a
/// CommandError of ExitCode::File.
std::unique_ptr<ZelModel> OpenLoop(const std::string& path, Console& console);

/// As OpenLoop, and prints what is doubtful too.
void CheckLoop(const std::string& path, Console& console);

/// Adds the loop that a model file's text is for to the catalogue, when it is for one.
void AddLoopOf(const std::string& modelFile, const std::string& text, Catalogue& catalogue,
               Console& console);

}  // namespace torvane::cli
