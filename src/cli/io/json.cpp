#include "cli/io/json.h"

#include <cmath>
#include <string_view>

#include "core/text.h"

namespace torvane::cli {

std::string JsonText(const std::string& text) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string quoted = "\"";
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (code < 0x20U) {
      quoted += "\\u00";
      quoted += digits[code / 16U];
      quoted += digits[code % 16U];
    } else {
      if (c == '"' || c == '\\') quoted += '\\';
      quoted += c;
    }
  }
  quoted += '"';
  return quoted;
}

std::string JsonNumber(double number) {
  return std::isfinite(number) ? FormatShortest(number) : "null";
}

}  // namespace torvane::cli
