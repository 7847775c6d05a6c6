#pragma once

#include <string_view>

namespace torvane {

/// What the control of that object name does for the user, in a sentence or two; nullptr for a name
/// that the table does not have.
const char* HelpText(std::string_view control);

}  // namespace torvane
