#include "instruments/analyser/response_columns.h"

#include <algorithm>

#include "core/names.h"
#include "core/table_lines.h"
#include "core/text.h"

namespace torvane {

namespace {

struct UnitName {
  std::string_view Name;
  ResponseUnit Unit;
};

constexpr std::array UnitNames = {
    UnitName{"hz", ResponseUnit::Hz},
    UnitName{"khz", ResponseUnit::KHz},
    UnitName{"mhz", ResponseUnit::MegaHz},
    UnitName{"rad/s", ResponseUnit::RadPerSecond},
    UnitName{"rad/sec", ResponseUnit::RadPerSecond},
    UnitName{"1/s", ResponseUnit::RadPerSecond},
    UnitName{"db", ResponseUnit::Decibel},
    UnitName{"abs", ResponseUnit::Ratio},
    UnitName{"absolute", ResponseUnit::Ratio},
    UnitName{"lin", ResponseUnit::Ratio},
    UnitName{"linear", ResponseUnit::Ratio},
    UnitName{"ratio", ResponseUnit::Ratio},
    UnitName{"v/v", ResponseUnit::Ratio},
    UnitName{"deg", ResponseUnit::Degrees},
    UnitName{"degree", ResponseUnit::Degrees},
    UnitName{"degrees", ResponseUnit::Degrees},
    UnitName{"\xC2\xB0", ResponseUnit::Degrees},
    UnitName{"\xB0", ResponseUnit::Degrees},
    UnitName{"rad", ResponseUnit::Radians},
    UnitName{"radian", ResponseUnit::Radians},
    UnitName{"radians", ResponseUnit::Radians},
};

struct WordRole {
  std::string_view Word;
  ResponseRole Role;
};

// "Frequency response magnitude" is a magnitude: the frequency comes last.
constexpr std::array WordRoles = {
    WordRole{"coherence", ResponseRole::Coherence},
    WordRole{"excited", ResponseRole::Excited},
    WordRole{"phase", ResponseRole::Phase},
    WordRole{"arg", ResponseRole::Phase},
    WordRole{"angle", ResponseRole::Phase},
    WordRole{"phi", ResponseRole::Phase},
    WordRole{"imaginary", ResponseRole::Imaginary},
    WordRole{"imag", ResponseRole::Imaginary},
    WordRole{"im", ResponseRole::Imaginary},
    WordRole{"real", ResponseRole::Real},
    WordRole{"re", ResponseRole::Real},
    WordRole{"gain", ResponseRole::Gain},
    WordRole{"magnitude", ResponseRole::Gain},
    WordRole{"mag", ResponseRole::Gain},
    WordRole{"amplitude", ResponseRole::Gain},
    WordRole{"frequency", ResponseRole::Frequency},
    WordRole{"freq", ResponseRole::Frequency},
    WordRole{"f", ResponseRole::Frequency},
    WordRole{"w", ResponseRole::Frequency},
    WordRole{"omega", ResponseRole::Frequency},
    WordRole{"\xCF\x89", ResponseRole::Frequency},
};

// A caption's or a unit's words alone.
std::string_view Bare(std::string_view text) {
  return Trimmed(text, " \t\"_,/");
}

// Takes the unit from the end of a caption: in brackets, or behind a blank, "/" or "_".
ResponseUnit TakeUnit(std::string_view& caption) {
  if (const ResponseUnit whole = ResponseUnitOf(caption); whole != ResponseUnit::Unknown) {
    caption = {};
    return whole;
  }
  for (const std::string_view mark : {"(", "[", " ", "_", "/", ","}) {
    const std::size_t at = mark == "/" ? caption.find(mark) : caption.rfind(mark);
    if (at == std::string_view::npos) continue;
    std::string_view unit = caption.substr(at + 1);
    unit = unit.substr(0, unit.find_first_of(")]"));
    const ResponseUnit found = ResponseUnitOf(Bare(unit));
    if (found == ResponseUnit::Unknown) continue;
    caption = caption.substr(0, at);
    return found;
  }
  return ResponseUnit::Unknown;
}

std::vector<std::string_view> Words(std::string_view text) {
  constexpr std::string_view between = " \t_-.,:()[]{}|/";
  std::vector<std::string_view> words;
  for (std::size_t end = 0;;) {
    const std::size_t begin = text.find_first_not_of(between, end);
    if (begin == std::string_view::npos) return words;
    end = std::min(text.find_first_of(between, begin), text.size());
    words.push_back(text.substr(begin, end - begin));
  }
}

ResponseUnit UnitWithout(ResponseRole role, std::string_view word) {
  if (role == ResponseRole::Frequency) {
    const bool angular = word == "w" || word == "omega" || word == "\xCF\x89";
    return angular ? ResponseUnit::RadPerSecond : ResponseUnit::Hz;
  }
  return word == "gain" ? ResponseUnit::Decibel : ResponseUnit::Unknown;
}

std::array<std::string, 3> ThreeFields(std::string_view text, bool& whole) {
  std::array<std::string, 3> fields;
  const TableFields found = SplitTableLine(text, ',', fields.size() + 1);
  whole = whole && found.size() == fields.size();
  for (std::size_t i = 0; i < std::min(found.size(), fields.size()); ++i)
    fields[i] = Bare(found[i]);
  return fields;
}

}  // namespace

ResponseUnit ResponseUnitOf(std::string_view text) {
  if (Bare(text) == "mHz") return ResponseUnit::MilliHz;
  const std::string name = Lower(std::string(Bare(text)));
  const auto found = std::find_if(UnitNames.begin(), UnitNames.end(),
                                  [&](const UnitName& unit) { return unit.Name == name; });
  return found == UnitNames.end() ? ResponseUnit::Unknown : found->Unit;
}

ResponseRole RoleOf(ResponseUnit unit) {
  switch (unit) {
    case ResponseUnit::Unknown:
      return ResponseRole::None;
    case ResponseUnit::Decibel:
    case ResponseUnit::Ratio:
      return ResponseRole::Gain;
    case ResponseUnit::Degrees:
    case ResponseUnit::Radians:
      return ResponseRole::Phase;
    default:
      return ResponseRole::Frequency;
  }
}

ResponseColumn ReadResponseCaption(std::string_view caption) {
  ResponseColumn column;
  caption = Bare(caption);
  const bool magnitude = caption.find('|') != std::string_view::npos;
  column.Unit = TakeUnit(caption);
  const std::vector<std::string_view> words = Words(caption);
  const auto is = [](std::string_view word, std::string_view known) {
    return Lower(std::string(word)) == known;
  };
  for (const WordRole& known : WordRoles) {
    const auto found = std::find_if(words.begin(), words.end(),
                                    [&](std::string_view word) { return is(word, known.Word); });
    if (found == words.end()) continue;
    column.Role = known.Role;
    if (column.Unit == ResponseUnit::Unknown) {
      column.Unit = UnitWithout(known.Role, known.Word);
      column.Implied = column.Unit != ResponseUnit::Unknown;
    }
    for (const std::string_view word : words) {
      if (word == *found) continue;
      if (!column.Name.empty()) column.Name += ' ';
      column.Name += word;
    }
    return column;
  }
  column.Role = magnitude ? ResponseRole::Gain : RoleOf(column.Unit);
  column.Name = Bare(caption);
  return column;
}

std::optional<ResponseHints> ParseResponseHints(std::string_view columns, std::string_view units) {
  ResponseHints hints;
  bool whole = true;
  if (!columns.empty()) {
    const auto names = ThreeFields(columns, whole);
    hints.Columns.assign(names.begin(), names.end());
    for (const std::string& name : names) whole = whole && !name.empty();
  }
  if (!units.empty()) {
    constexpr std::array roles = {ResponseRole::Frequency, ResponseRole::Gain, ResponseRole::Phase};
    const auto names = ThreeFields(units, whole);
    for (std::size_t i = 0; i < names.size(); ++i) {
      hints.Units[i] = ResponseUnitOf(names[i]);
      whole = whole && (names[i].empty() || RoleOf(hints.Units[i]) == roles[i]);
    }
  }
  return whole ? std::optional(hints) : std::nullopt;
}

}  // namespace torvane
