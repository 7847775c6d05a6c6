#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace torvane {

/// The text with a last line that tells whether all of it is there, unchanged: its length and a
/// checksum. A model file's reader ignores that line.
std::string Sealed(std::string text);

/// The text that was sealed; nothing when it is empty, cut short, changed or was never sealed.
std::optional<std::string> Unsealed(std::string_view sealed);

/// A checksum of the text, against accidents and not against forgers: a letter, so that no
/// spreadsheet takes it for a number, and 16 digits.
std::string ChecksumText(std::string_view text);

}  // namespace torvane
