#pragma once

#include <string>
#include <string_view>

namespace torvane::drawing {

/// The text as characters of XML, also between quotation marks; control characters are blanks, and
/// what is no UTF-8 is "?".
std::string EscapedForXml(std::string_view text);

/// The text between quotation marks in DOT.
std::string EscapedForDot(std::string_view text);

}  // namespace torvane::drawing
