#pragma once

#include <array>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "core/instrument_kind.h"
#include "core/placement.h"

namespace torvane {

/// One line of a model file: fields separated by commas, without quoting. When the first is
/// "Application" or "Model", everything after the first comma is the second. An empty last field
/// does not count.
struct Record {
  std::string Line;  ///< as read, without its end
  int Number = 0;    ///< of the line in its file, from 1
  std::vector<std::string> Fields;

  /// The field at the position; empty when there are fewer.
  const std::string& Field(std::size_t index) const;
  /// The third field, which says what an instrument's record is about.
  const std::string& Keyword() const { return Field(2); }
};

/// Divides a line, the number-th of its file, into its fields.
Record ParseRecord(std::string_view line, int number);

/// Writes the records of one instrument: each begins with the kind's keyword and the name.
class RecordWriter {
 public:
  /// Lines are appended to the text, which must outlive the writer.
  RecordWriter(std::string& text, std::string_view kind, std::string_view name)
      : text_(text), start_{std::string(kind), std::string(name)} {}

  /// A line end or comma within a field, for which the format has no form, becomes a blank; so does
  /// an empty last field.
  void Write(std::string_view keyword, std::initializer_list<std::string> fields);

 private:
  std::string& text_;
  std::array<std::string, 2> start_;
};

/// Appends a line that belongs to no instrument, as RecordWriter does.
void AppendRecord(std::string& text, std::string_view keyword,
                  std::initializer_list<std::string> fields);

/// "1" or "0"; anything but "1" reads as off.
std::string FlagText(bool on);
/// Whether a flag's field says on.
inline bool IsOn(const std::string& field) {
  return field == "1";
}

/// Number with up to 15 significant digits, as analysers store theirs.
std::string FormatRecordNumber(double x);
/// The number that is read back from that. A setting that is stored so is the same before and after
/// a file.
double AsRecorded(double x);

/// The text that is read back from a record's last field, where that is taken without the blanks
/// around it.
std::string StorableField(const std::string& text);

/// The record "Display": window state, height, left, top, width.
void SaveDisplay(RecordWriter& writer, const WindowPlacement& placement);

/// What is wrong with a "Display" record.
enum class DisplayFault { None, EntryCount, WindowState };

/// Reads a "Display" record; on a fault, or after the report of an entry that is no whole number,
/// the placement stays. Positions and sizes are limited to what a window system can show.
DisplayFault LoadDisplay(const Record& record, WindowPlacement& placement);

/// LoadDisplay with the reports that most instruments give; `wrongCount` begins that of a wrong
/// number of entries.
void LoadDisplayReporting(const Record& record, WindowPlacement& placement,
                          const std::string& wrongCount);

/// Reports a record whose keyword its instrument does not know.
void ReportUnknownRecord(const Record& record);

}  // namespace torvane
