#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {

// Tables as benches and spreadsheets write them: fields between semicolons, tabs, commas or blanks.

/// Fields of a line, without the blanks and quotes around them; they refer to the line.
using TableFields = std::vector<std::string_view>;

/// The text without blanks and quotes around it.
std::string_view TrimmedField(std::string_view text);

/// The text without the byte order mark that some programs begin a file with; where CR alone ends
/// lines, LF does so.
std::string TableText(std::string_view text);

/// What divides a line's fields: the first of semicolon, tab and comma that it holds outside of
/// quotes, else a blank.
char TableSeparator(std::string_view line);

/// At most so many fields, those in quotes whole. Several blanks that divide fields count as one.
TableFields SplitTableLine(std::string_view line, char separator, std::size_t most);

/// The number in a field; a comma that divides no fields may be the decimal one.
std::optional<double> TableNumber(std::string_view field, char separator);

/// Of a column's caption "vF (V)" the "vF".
std::string_view TableTitle(std::string_view caption);
/// And the "V"; empty where no brackets follow.
std::string_view TableUnit(std::string_view caption);
/// Seconds in the unit of a caption of time: s, which need not be said, ms or us; nothing for
/// another one.
std::optional<double> SecondsIn(std::string_view caption);

/// "line 3: <what>"
std::string LineFault(int line, const std::string& what);

/// What is wrong with a line that has more fields than the captions: decimal commas, most often.
std::string TooManyFields(int line);

}  // namespace torvane
