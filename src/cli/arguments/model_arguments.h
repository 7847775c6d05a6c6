#pragma once

#include <string>

#include "workbench/model/model_options.h"

namespace CLI {
class App;
}

namespace torvane::cli {

/// MODEL alone, for commands that only describe it.
void AddModelName(CLI::App& command, std::string& model);

/// What is set on a model.
void AddModelSettings(CLI::App& command, ModelOptions& options);

/// MODEL and what is set on it.
void AddModelOptions(CLI::App& command, ModelOptions& options);

}  // namespace torvane::cli
