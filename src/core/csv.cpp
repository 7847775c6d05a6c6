#include "core/csv.h"

#include <array>
#include <charconv>

#include "core/text.h"

namespace torvane {

std::string CsvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string field = "\"";
  for (const char c : text) {
    if (c == '"') field += '"';
    field += c;
  }
  return field + "\"";
}

std::string CsvLine(const std::vector<std::string>& fields) {
  std::string line;
  for (const std::string& field : fields) {
    if (&field != &fields.front()) line += ',';
    line += CsvField(field);
  }
  return line + "\n";
}

std::string CsvLine(std::span<const double> numbers) {
  std::string line;
  for (const double& number : numbers) {
    if (&number != &numbers.front()) line += ',';
    line += FormatShortest(number);
  }
  return line + "\n";
}

std::string FormatShortestSingle(float x) {
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), x);
  return std::string(text.data(), end.ptr);
}

}  // namespace torvane
