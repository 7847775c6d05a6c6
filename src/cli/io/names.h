#pragma once

#include "cli/command_error.h"
#include "core/names.h"

namespace torvane::cli {

/// UnknownNameText as wrong usage.
inline CommandError UnknownName(const std::string& what, const std::string& text,
                                const std::vector<std::string>& names) {
  return UsageError(UnknownNameText(what, text, names));
}

}  // namespace torvane::cli
