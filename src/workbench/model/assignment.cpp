#include "workbench/model/assignment.h"

#include "workbench/work_fault.h"

namespace torvane {

Assignment SplitAssignment(const std::string& option, const std::string& text) {
  const auto equals = text.find('=');
  if (equals == std::string::npos || equals == 0) {
    throw UsageError(option + " needs NAME=VALUE, not \"" + text + "\"");
  }
  return {text.substr(0, equals), text.substr(equals + 1)};
}

}  // namespace torvane
