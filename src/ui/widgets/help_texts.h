#pragma once

#include <string_view>

namespace torvane {

/// What a control does for the user, in a sentence or two; nullptr when the table has none of it.
/// Controls go by their object names or, where two have one name, by the name of something that
/// they stand in and their own: "RunGroup/SBRun".
const char* HelpText(std::string_view control);

}  // namespace torvane
