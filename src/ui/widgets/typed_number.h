#pragma once

#include <string>

namespace torvane {

/// What was typed into a number's edit, with an engineering suffix (p, n, u, m, k, M, G) turned
/// into a power of ten: "2.5k" becomes "2.5e3". Text that is no number with a suffix stays as it
/// is.
std::string WithoutSuffix(const std::string& text);

}  // namespace torvane
