// Reads what a generator is to play from a table of numbers.

#include <algorithm>
#include <filesystem>
#include <utility>

#include "core/files/model_file_lines.h"
#include "core/files/text_file.h"
#include "core/names.h"
#include "core/table_lines.h"
#include "instruments/generator/wave_table.h"

namespace torvane {
namespace {

constexpr std::size_t MaxColumns = 1000;

/// Takes the lines of a text one by one. Each says what is wrong, and nothing when nothing is.
class WaveReader {
 public:
  explicit WaveReader(std::string_view column) : column_(column) {}

  std::string Take(std::string_view line, int number) {
    if (line.starts_with('#') || TrimmedField(line).empty()) return {};
    const bool first = width_ == 0;
    if (first) separator_ = TableSeparator(line);
    const TableFields fields = SplitTableLine(line, separator_, MaxColumns);
    if (first) {
      width_ = fields.size();
      const bool captions = !TableNumber(fields.front(), separator_);
      std::string fault = captions ? TakeCaptions(fields, number) : Choose({}, number);
      if (captions || !fault.empty()) return fault;
    }
    return TakePoint(fields, number);
  }

  std::vector<WaveTable::Point> Points;
  std::vector<std::string> Columns;  ///< of values

 private:
  std::string TakeCaptions(const TableFields& captions, int number) {
    const auto seconds = SecondsIn(captions.front());
    if (!seconds) return LineFault(number, "time, the first column, must be in s, ms or us");
    seconds_ = *seconds;
    for (std::size_t i = 1; i < captions.size(); ++i) {
      Columns.emplace_back(TableTitle(captions[i]));
    }
    return Choose(Columns, number);
  }

  // The only column of values, or the named one.
  std::string Choose(const std::vector<std::string>& names, int number) {
    if (width_ < 2) return LineFault(number, "a line needs a time and a value");
    if (!column_.empty()) {
      const int found = IndexOfName(std::string(column_), names);
      if (found >= 0) chosen_ = static_cast<std::size_t>(found) + 1;
      if (found >= 0) return {};
      return LineFault(number, UnknownNameText("column", std::string(column_), names));
    }
    if (width_ == 2) return {};
    return LineFault(number, "there are " + std::to_string(width_ - 1) +
                                 " columns of values, of which one is to be named behind the file" +
                                 (names.empty() ? "; they have no names" : ", as :" + names[0]));
  }

  std::string TakePoint(const TableFields& fields, int number) {
    if (fields.size() > width_) return TooManyFields(number);
    if (fields.size() <= chosen_) return LineFault(number, "a line needs a time and a value");
    const auto time = TableNumber(fields.front(), separator_);
    const auto value = TableNumber(fields[chosen_], separator_);
    if (!time || !value) {
      const std::string_view wrong = fields[time ? chosen_ : 0];
      return LineFault(number, '"' + std::string(wrong) + "\" is not a number");
    }
    Points.push_back({*time * seconds_, *value});
    if (Points.size() > WaveTable::MostPoints) return WaveTable::Fault(Points);
    const bool back = Points.size() > 1 && Points.back().Time < (Points.end() - 2)->Time;
    return back ? LineFault(number, "time goes back") : std::string();
  }

  std::string_view column_;
  char separator_ = ',';
  std::size_t width_ = 0;  ///< columns
  std::size_t chosen_ = 1;
  double seconds_ = 1.0;
};

}  // namespace

WaveReading ReadWaveFile(const std::string& path, std::string_view column) {
  std::string text;
  WaveReading reading;
  reading.Fault = ReadTextFile(path, MaxBenchTable, text, BenchPatience);
  if (!reading.Fault.empty()) return reading;
  WaveReader reader(column);
  const std::string plain = TableText(text);
  LineReader lines(plain);
  for (std::string line; reading.Fault.empty() && lines.Next(line);) {
    reading.Fault = reader.Take(line, lines.Number());
  }
  if (reading.Fault.empty()) reading.Fault = WaveTable::Fault(reader.Points);
  reading.Columns = reader.Columns;
  if (!reading.Fault.empty()) {
    reading.Fault = '"' + path + "\": " + reading.Fault;
    return reading;
  }
  std::string name = std::filesystem::path(path).filename().string();
  if (!column.empty()) name.append(":").append(column);
  reading.Table = std::make_shared<const WaveTable>(std::move(name), std::move(reader.Points));
  return reading;
}

}  // namespace torvane
