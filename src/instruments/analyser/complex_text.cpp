#include "instruments/analyser/complex_text.h"

#include <string>

#include "core/text.h"

namespace torvane {

namespace {

std::optional<ComplexText> FromPair(std::string_view first, std::string_view second) {
  const std::size_t degrees = second.find_first_of("\xC2\xB0");
  second = second.substr(0, degrees);
  const bool polar = first.ends_with("dB");
  if (polar) first.remove_suffix(2);
  const auto a = ParseNumber(first);
  const auto b = ParseNumber(second);
  if (!a || !b || (!polar && degrees != std::string_view::npos)) return std::nullopt;
  return ComplexText{*a, *b, polar};
}

// The sign between the parts is the last one that belongs to no exponent.
std::size_t SignBetween(std::string_view text) {
  for (std::size_t i = text.size(); i-- > 1;) {
    const bool sign = text[i] == '+' || text[i] == '-';
    if (sign && text[i - 1] != 'e' && text[i - 1] != 'E') return i;
  }
  return std::string_view::npos;
}

}  // namespace

std::optional<ComplexText> ParseComplexText(std::string_view field) {
  std::string text;
  for (const char c : field) {
    if (c != ' ' && c != '(' && c != ')') text += c;
  }
  const std::string_view all = text;
  if (const std::size_t comma = all.find(','); comma != std::string_view::npos) {
    return FromPair(all.substr(0, comma), all.substr(comma + 1));
  }
  if (!all.ends_with('i') && !all.ends_with('j')) return std::nullopt;
  const std::size_t sign = SignBetween(all);
  if (sign == std::string_view::npos) return std::nullopt;
  std::string imaginary(all.substr(sign, all.size() - sign - 1));
  if (imaginary.front() == '+') imaginary.erase(0, 1);
  return FromPair(all.substr(0, sign), imaginary);
}

}  // namespace torvane
