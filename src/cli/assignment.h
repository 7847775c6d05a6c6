#pragma once

#include <string>
#include <vector>

namespace torvane::cli {

/// An option's "NAME=VALUE".
struct Assignment {
  std::string Name;
  std::string Value;
};

/// Splits at the first "="; a text without one is wrong usage of the named option.
Assignment SplitAssignment(const std::string& option, const std::string& text);

/// The number of an assignment; anything else is wrong usage.
double AssignedNumber(const Assignment& assignment);

/// The position that the value names, by one of the names or by an index, which is limited to the
/// names with a note. Anything else is wrong usage.
int AssignedChoice(const Assignment& assignment, const std::vector<std::string>& names);

/// Notes that the name's value is not what was asked for but the one given.
void NoteLimited(const std::string& name, const std::string& value);

}  // namespace torvane::cli
