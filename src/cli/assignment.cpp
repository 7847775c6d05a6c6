#include "cli/assignment.h"

#include <algorithm>

#include "cli/names.h"
#include "core/messages.h"
#include "core/text.h"

namespace torvane::cli {

Assignment SplitAssignment(const std::string& option, const std::string& text) {
  const auto equals = text.find('=');
  if (equals == std::string::npos || equals == 0) {
    throw UsageError(option + " needs NAME=VALUE, not \"" + text + "\"");
  }
  return {text.substr(0, equals), text.substr(equals + 1)};
}

double AssignedNumber(const Assignment& assignment) {
  const std::optional<double> number = ParseNumber(assignment.Value);
  if (!number) {
    throw UsageError(assignment.Name + " needs a number, not \"" + assignment.Value + "\"");
  }
  return *number;
}

int AssignedChoice(const Assignment& assignment, const std::vector<std::string>& names) {
  const int named = IndexOfName(assignment.Value, names);
  if (named >= 0) return named;
  const std::optional<int> index = ParseInteger(assignment.Value);
  if (!index) throw UnknownName(assignment.Name, assignment.Value, names);
  const int limited = std::clamp(*index, 0, static_cast<int>(names.size()) - 1);
  if (limited != *index) {
    NoteLimited(assignment.Name,
                std::to_string(limited) + " (" + names[static_cast<std::size_t>(limited)] + ")");
  }
  return limited;
}

void NoteLimited(const std::string& name, const std::string& value) {
  Note(name + " is limited to " + value);
}

}  // namespace torvane::cli
