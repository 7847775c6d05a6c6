#pragma once

#include <string>

#include "instruments/scope/scope.h"

namespace torvane {

/// A screen as CSV: a column of times in seconds and one for each displayed channel, in channel
/// order and in display units; a heading, then a line for each point.
std::string ScreenCsv(const ZelScope& scope, const ScopeScreen& screen);

}  // namespace torvane
