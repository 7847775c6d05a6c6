#include "core/files/record.h"

#include <algorithm>
#include <optional>

#include "core/messages.h"
#include "core/text.h"

namespace torvane {
namespace {

constexpr int RecordDigits = 15;
constexpr int FarthestPixel = 32767;  // what window systems can place
constexpr std::size_t DisplayEntries = 8;

struct StateName {
  WindowState State;
  const char* Name;
};
constexpr std::array StateNames{
    StateName{WindowState::Maximised, "wsMaximized"},
    StateName{WindowState::Minimised, "wsMinimized"},
    StateName{WindowState::Normal, "wsNormal"},
};

bool SecondFieldHoldsCommas(std::string_view keyword) {
  return keyword == "Application" || keyword == "Model";
}

// A blank for what the format has no form for.
void AppendField(std::string& text, std::string_view field) {
  const auto start = static_cast<std::ptrdiff_t>(text.size());
  text += field;
  std::replace_if(
      text.begin() + start, text.end(), [](char c) { return c == ',' || c == '\r' || c == '\n'; },
      ' ');
}

// The fields of a line that follow its first one.
void AppendFields(std::string& text, std::initializer_list<std::string> fields) {
  for (const std::string& field : fields) AppendField(text += ',', field);
  if (text.back() == ',') text += ' ';
  text += "\r\n";
}

}  // namespace

const std::string& Record::Field(std::size_t index) const {
  static const std::string none;
  return index < Fields.size() ? Fields[index] : none;
}

Record ParseRecord(std::string_view line, int number) {
  Record record{std::string(line), number, {}};
  while (!line.empty()) {
    const bool takesRest = record.Fields.size() == 1 && SecondFieldHoldsCommas(record.Fields[0]);
    const std::size_t comma = takesRest ? std::string_view::npos : line.find(',');
    record.Fields.emplace_back(line.substr(0, comma));
    if (comma == std::string_view::npos) break;
    line.remove_prefix(comma + 1);
  }
  return record;
}

void AppendRecord(std::string& text, std::string_view keyword,
                  std::initializer_list<std::string> fields) {
  AppendField(text, keyword);
  AppendFields(text, fields);
}

void RecordWriter::Write(std::string_view keyword, std::initializer_list<std::string> fields) {
  AppendField(text_, start_[0]);
  AppendField(text_ += ',', start_[1]);
  AppendField(text_ += ',', keyword);
  AppendFields(text_, fields);
}

std::string FlagText(bool on) {
  return on ? "1" : "0";
}

std::string FormatRecordNumber(double x) {
  std::string text = FormatGeneral(x, RecordDigits, 0);
  // The largest numbers round to what is none.
  return ParseNumber(text) ? text : FormatShortest(x);
}

double AsRecorded(double x) {
  return ParseNumber(FormatRecordNumber(x)).value_or(x);
}

std::string StorableField(const std::string& text) {
  std::string field;
  AppendField(field, text);
  return std::string(Trimmed(field, " "));
}

void SaveDisplay(RecordWriter& writer, const WindowPlacement& placement) {
  const auto* state = std::find_if(StateNames.begin(), StateNames.end(),
                                   [&](const StateName& s) { return s.State == placement.State; });
  writer.Write("Display",
               {state->Name, std::to_string(placement.Height), std::to_string(placement.Left),
                std::to_string(placement.Top), std::to_string(placement.Width)});
}

DisplayFault LoadDisplay(const Record& record, WindowPlacement& placement) {
  if (record.Fields.size() != DisplayEntries) return DisplayFault::EntryCount;
  const auto* state = std::find_if(StateNames.begin(), StateNames.end(),
                                   [&](const StateName& s) { return s.Name == record.Fields[3]; });
  if (state == StateNames.end()) return DisplayFault::WindowState;
  std::array<int, 4> pixels{};
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    const std::optional<int> pixel = ToInteger(record.Fields[4 + i]);
    if (!pixel) return DisplayFault::None;
    pixels[i] = std::clamp(*pixel, -FarthestPixel, FarthestPixel);
  }
  placement = {state->State, std::max(pixels[0], 0), pixels[1], pixels[2], std::max(pixels[3], 0)};
  return DisplayFault::None;
}

void ReportUnknownRecord(const Record& record) {
  Error("Unrecognized line to load in \"" + record.Line + "\"");
}

void LoadDisplayReporting(const Record& record, WindowPlacement& placement,
                          const std::string& wrongCount) {
  switch (LoadDisplay(record, placement)) {
    case DisplayFault::EntryCount:
      Error(wrongCount + record.Line);
      break;
    case DisplayFault::WindowState:
      Error("File error:  Illegal Window State in" + record.Line);
      break;
    case DisplayFault::None:
      break;
  }
}

}  // namespace torvane
