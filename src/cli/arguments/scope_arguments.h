#pragma once

#include "workbench/model/scope_settings.h"

namespace CLI {
class App;
}

namespace torvane::cli {

void AddScopeSettings(CLI::App& command, ScopeSettings& settings);

}  // namespace torvane::cli
