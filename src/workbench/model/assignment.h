#pragma once

#include <string>

namespace torvane {

/// An option's "NAME=VALUE".
struct Assignment {
  std::string Name;
  std::string Value;
};

/// Splits at the first "="; a text without one is wrong usage of the named option.
Assignment SplitAssignment(const std::string& option, const std::string& text);

}  // namespace torvane
