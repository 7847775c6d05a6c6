#pragma once

#include <string>
#include <vector>

namespace torvane {

/// The text with the letters A to Z in lower case.
std::string Lower(std::string text);

/// The name that was most likely meant, without regard to case: one that begins with the text, else
/// one that holds it, else the one with the fewest characters to change. Empty when none is near:
/// fewer than two fifths of the characters are changed or two of them swapped.
std::string NearestName(const std::string& text, const std::vector<std::string>& names);

/// `unknown <what> "<text>"`, with the nearest of the valid names or, where none is near and they
/// are few, all of them.
std::string UnknownNameText(const std::string& what, const std::string& text,
                            const std::vector<std::string>& names);

/// Position of the name that equals the text, or -1.
int IndexOfName(const std::string& text, const std::vector<std::string>& names);

}  // namespace torvane
