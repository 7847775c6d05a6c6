#pragma once

#include <string>

namespace torvane {

/// The system's reason for a fault (a value of errno), in the language of the program's own texts
/// whatever the user's locale is.
std::string SystemReason(int fault);

/// "Cannot open FILE: reason".
std::string CannotOpen(const std::string& path, int fault);
/// "Cannot write FILE: reason".
std::string CannotWrite(const std::string& path, int fault);

}  // namespace torvane
