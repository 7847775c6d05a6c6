#pragma once

#include "core/names.h"
#include "workbench/work_fault.h"

namespace torvane {

/// UnknownNameText as wrong usage.
inline WorkFault UnknownName(const std::string& what, const std::string& text,
                             const std::vector<std::string>& names) {
  return UsageError(UnknownNameText(what, text, names));
}

}  // namespace torvane
