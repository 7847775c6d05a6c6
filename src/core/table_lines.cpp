#include "core/table_lines.h"

#include <algorithm>

#include "core/names.h"
#include "core/text.h"

namespace torvane {

std::string_view TrimmedField(std::string_view text) {
  return Trimmed(text, " \t\"");
}

std::string TableText(std::string_view from) {
  constexpr std::string_view mark = "\xEF\xBB\xBF";
  if (from.starts_with(mark)) from.remove_prefix(mark.size());
  std::string text(from);
  if (text.find('\n') == std::string::npos) std::replace(text.begin(), text.end(), '\r', '\n');
  return text;
}

char TableSeparator(std::string_view line) {
  const bool paired = std::count(line.begin(), line.end(), '"') % 2 == 0;
  for (const char separator : {';', '\t', ','}) {
    bool quoted = false;
    for (const char c : line) {
      if (c == '"') quoted = paired && !quoted;
      if (c == separator && !quoted) return separator;
    }
  }
  return ' ';
}

namespace {

// Where the field that the line begins with ends: at a separator, behind the quotes that it is in.
std::size_t FieldEnd(std::string_view line, char separator) {
  const std::size_t begin = line.find_first_not_of(' ');
  if (begin == std::string_view::npos || line[begin] != '"') return line.find(separator);
  std::size_t close = line.find('"', begin + 1);
  for (; close != std::string_view::npos; close = line.find('"', close + 1)) {
    const std::size_t next = line.find_first_not_of(' ', close + 1);
    if (next == std::string_view::npos) return separator == ' ' ? line.find(' ', close) : next;
    if (separator == ' ' && next > close + 1) return close + 1;
    if (separator != ' ' && line[next] == separator) return next;
  }
  return line.find(separator);  // quotes that do not end
}

}  // namespace

TableFields SplitTableLine(std::string_view line, char separator, std::size_t most) {
  TableFields fields;
  if (separator == ' ') line = Trimmed(line);
  while (fields.size() < most) {
    const std::size_t end = FieldEnd(line, separator);
    fields.push_back(TrimmedField(line.substr(0, end)));
    if (end == std::string_view::npos) break;
    line.remove_prefix(separator == ' ' ? std::min(line.find_first_not_of(' ', end), line.size())
                                        : end + 1);
  }
  return fields;
}

std::optional<double> TableNumber(std::string_view field, char separator) {
  if (const auto number = ParseNumber(field)) return number;
  const std::size_t comma = field.find(',');
  const bool decimal = separator != ',' && comma != std::string_view::npos &&
                       field.find('.') == std::string_view::npos;
  if (!decimal) return std::nullopt;
  std::string text(field);
  text[comma] = '.';
  return ParseNumber(text);
}

std::string_view TableTitle(std::string_view caption) {
  return TrimmedField(caption.substr(0, caption.find_first_of("([")));
}

std::string_view TableUnit(std::string_view caption) {
  const std::size_t begin = caption.find_first_of("([");
  if (begin == std::string_view::npos) return {};
  const std::string_view rest = caption.substr(begin + 1);
  return TrimmedField(rest.substr(0, rest.find_first_of(")]")));
}

std::optional<double> SecondsIn(std::string_view caption) {
  const std::string unit = Lower(std::string(TableUnit(caption)));
  if (unit.empty()) return 1.0;
  if (unit == "s" || unit == "sec" || unit == "seconds") return 1.0;
  if (unit == "ms" || unit == "msec") return 1e-3;
  if (unit == "us" || unit == "\u00b5s" || unit == "\u03bcs") return 1e-6;
  return std::nullopt;
}

std::string LineFault(int line, const std::string& what) {
  return "line " + std::to_string(line) + ": " + what;
}

std::string TooManyFields(int line) {
  return LineFault(line,
                   "more fields than columns; with decimal commas the fields need semicolons or "
                   "tabs between them");
}

}  // namespace torvane
