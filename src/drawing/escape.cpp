#include "drawing/escape.h"

namespace torvane::drawing {

namespace {

// Bytes of the UTF-8 character that begins there; 0 for none.
std::size_t CharacterAt(std::string_view text, std::size_t at) {
  const auto first = static_cast<unsigned char>(text[at]);
  const std::size_t length = first < 0x80U    ? 1
                             : first < 0xC2U  ? 0
                             : first < 0xE0U  ? 2
                             : first < 0xF0U  ? 3
                             : first <= 0xF4U ? 4
                                              : 0;
  if (at + length > text.size()) return 0;
  for (std::size_t k = 1; k < length; ++k) {
    if ((static_cast<unsigned char>(text[at + k]) & 0xC0U) != 0x80U) return 0;
  }
  return length;
}

std::string Clean(std::string_view text) {
  std::string clean;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = CharacterAt(text, at);
    const auto byte = static_cast<unsigned char>(text[at]);
    if (length == 0) {
      clean += '?';
    } else if (length == 1 && (byte < 0x20U || byte == 0x7FU)) {
      clean += ' ';
    } else {
      clean += text.substr(at, length);
    }
    at += length == 0 ? 1 : length;
  }
  return clean;
}

}  // namespace

std::string EscapedForXml(std::string_view text) {
  std::string escaped;
  for (const char c : Clean(text)) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

std::string EscapedForDot(std::string_view text) {
  std::string escaped;
  for (const char c : Clean(text)) {
    if (c == '"' || c == '\\') escaped += '\\';
    escaped += c;
  }
  return escaped;
}

}  // namespace torvane::drawing
