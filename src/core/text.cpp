#include "core/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <system_error>

#include "core/messages.h"

namespace torvane {
namespace {

constexpr int ShownDigits = 5;
constexpr std::size_t ShownWidth = 8;

template <typename Number>
std::optional<Number> ParseWhole(std::string_view text) {
  text = Trimmed(text);
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  Number value{};
  const char* const end = text.data() + text.size();
  const auto [stop, fault] = std::from_chars(text.data(), end, value);
  if (fault != std::errc() || stop != end) return std::nullopt;
  return value;
}

// Long enough for every number at the precisions used: 309 digits before the point, 324 after it.
using DigitBuffer = std::array<char, 700>;

std::string Print(double x, std::chars_format format, int precision) {
  DigitBuffer buffer;
  const auto result =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), x, format, precision);
  return {buffer.data(), result.ptr};
}

void DropTrailingZeros(std::string& number) {
  if (number.find('.') == std::string::npos) return;
  number.erase(number.find_last_not_of('0') + 1);
  if (number.back() == '.') number.pop_back();
}

}  // namespace

std::string_view Trimmed(std::string_view text, std::string_view blanks) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::optional<double> ParseNumber(std::string_view text) {
  const std::optional<double> value = ParseWhole<double>(text);
  return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<int> ParseInteger(std::string_view text) {
  return ParseWhole<int>(text);
}

std::optional<double> ToNumber(std::string_view text, const std::string& where) {
  const std::optional<double> value = ParseNumber(text);
  if (!value) ConversionError("Cannot convert \"" + std::string(text) + "\" to a Number" + where);
  return value;
}

std::optional<int> ToInteger(std::string_view text) {
  const std::optional<int> value = ParseInteger(text);
  if (!value) ConversionError("Cannot convert \"" + std::string(text) + "\" to an Integer");
  return value;
}

std::string FormatShortest(double x) {
  DigitBuffer buffer;
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), x);
  return {buffer.data(), result.ptr};
}

std::string FormatG(double x) {
  std::string number = FormatEdit(x);
  if (number.size() >= ShownWidth) return number;
  return std::string(ShownWidth - number.size(), ' ') + number;
}

std::string FormatEdit(double x) {
  if (x == 0.0) x = 0.0;  // drops the sign of a negated zero
  return Print(x, std::chars_format::general, ShownDigits);
}

std::string FormatSteady(double x) {
  constexpr double Smallest = 1e-12;
  constexpr int LeastExponent = -3;  // of numbers written without one
  constexpr int GreatestExponent = 6;
  if (std::abs(x) < Smallest) x = 0.0;
  std::string scientific = Print(x, std::chars_format::scientific, ShownDigits - 1);
  const std::size_t mark = scientific.find('e');
  if (mark == std::string::npos) return scientific;  // infinite or not a number
  const int exponent = *ParseInteger(std::string_view(scientific).substr(mark + 1));
  if (exponent < LeastExponent || exponent > GreatestExponent) return scientific;
  return Print(x, std::chars_format::fixed, std::max(0, ShownDigits - 1 - exponent));
}

std::string FormatGeneral(double x, int precision, int exponentDigits) {
  std::string mantissa = Print(x, std::chars_format::scientific, precision - 1);
  const std::size_t mark = mantissa.find('e');
  if (mark == std::string::npos) return mantissa;  // infinite or not a number

  const std::optional<int> exponent = ParseInteger(std::string_view(mantissa).substr(mark + 1));
  if (*exponent >= -5 && *exponent < precision) {
    std::string number = Print(x, std::chars_format::fixed, precision - 1 - *exponent);
    DropTrailingZeros(number);
    return number;
  }
  mantissa.resize(mark);
  DropTrailingZeros(mantissa);
  std::string digits = std::to_string(std::abs(*exponent));
  while (static_cast<int>(digits.size()) < exponentDigits) digits.insert(digits.begin(), '0');
  return mantissa + (*exponent < 0 ? "E-" : "E") + digits;
}

std::string WithUnit(const std::string& text, const std::string& unit) {
  return text.empty() || unit.empty() ? text : text + " (" + unit + ")";
}

std::string AppendLine(std::string_view text) {
  return std::string(text) + "\r\n";
}

std::string StripRemark(const std::string& text) {
  const std::size_t blank = text.find(" (", 1);
  return blank == std::string::npos ? text : text.substr(0, blank);
}

int SplitFields(std::string_view text, std::vector<std::string>& fields, int max) {
  constexpr std::string_view separators = " \r\n,";
  fields.clear();
  std::size_t start = text.find_first_not_of(separators);
  while (start != std::string_view::npos) {
    if (static_cast<int>(fields.size()) == max) return -2;
    const std::size_t end = text.find_first_of(separators, start);
    fields.emplace_back(text.substr(start, end - start));
    if (end == std::string_view::npos) break;
    start = text.find_first_not_of(separators, end);
  }
  return static_cast<int>(fields.size());
}

}  // namespace torvane
