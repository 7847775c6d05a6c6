#pragma once

#include <string>

namespace torvane::cli {

/// A text in quotes; control characters, quotes and backslashes are escaped.
std::string JsonText(const std::string& text);

/// A number, or null of one that is not finite, which JSON has no word for.
std::string JsonNumber(double number);

}  // namespace torvane::cli
