#include "instruments/scope/trace_csv.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "core/files/model_file_lines.h"
#include "core/files/text_file.h"
#include "core/names.h"
#include "core/table_lines.h"

namespace torvane {

namespace {

constexpr std::size_t MaxTraces = 1000;
constexpr std::size_t TitlesTold = 8;
constexpr double MaxTime = 1e9;  // seconds

struct Prefix {
  std::string_view Text;
  double Value;
};
constexpr Prefix Prefixes[] = {{"m", 1e-3},      {"u", 1e-6}, {"\u00b5", 1e-6},
                               {"\u03bc", 1e-6}, {"k", 1e3},  {"M", 1e6}};

// A unit in one letter case, written out and without the "s" of several.
std::string Written(std::string_view unit) {
  std::string text = Lower(std::string(unit));
  if (text.size() > 2 && text.ends_with('s')) text.pop_back();
  return text == "v" ? "volt" : text == "a" ? "amp" : text;
}

/// A caption's unit in the signal's own one, which it is or has a prefix before; 1 where either is
/// not said.
std::optional<double> InUnit(std::string_view unit, const std::string& own) {
  if (unit.empty() || own.empty() || Written(unit) == Written(own)) return 1.0;
  for (const Prefix& prefix : Prefixes) {
    const bool before = unit.starts_with(prefix.Text);
    if (before && Written(unit.substr(prefix.Text.size())) == Written(own)) return prefix.Value;
  }
  return std::nullopt;
}

// The first ones, and that there are more.
std::string Listed(const std::vector<std::string>& titles) {
  std::string list;
  for (std::size_t i = 0; i < std::min(titles.size(), TitlesTold); ++i) {
    list += (i == 0 ? "" : ", ") + titles[i];
  }
  return titles.size() > TitlesTold ? list + ", ..." : list;
}

// Samples fall on a solver's or a bench's steps, up to one beside an even grid.
bool AreEven(const std::vector<double>& times) {
  const double interval = (times.back() - times.front()) / static_cast<double>(times.size() - 1);
  for (std::size_t i = 0; i < times.size(); ++i) {
    const double even = times.front() + interval * static_cast<double>(i);
    if (std::abs(times[i] - even) > interval) return false;
  }
  return true;
}

/// Takes the lines of a text one by one.
class TraceReader {
 public:
  explicit TraceReader(const ZelScope& scope) : scope_(scope) {
    traces_.Screen.Values.resize(scope.Channels().size());
  }

  /// What is wrong with the line; empty when nothing is.
  std::string Take(std::string_view line, int number) {
    if (line.starts_with('#') || TrimmedField(line).empty()) return {};
    if (columns_.empty()) return TakeCaptions(line, number);
    return TakePoint(SplitTableLine(line, separator_, MaxTraces), number);
  }

  TraceText Finish() {
    ScopeScreen& screen = traces_.Screen;
    if (screen.PointCount() < 2) return {{}, {}, "fewer than two points"};
    screen.Left = screen.Time.front();
    if (screen.Left <= 0.0 && screen.Time.back() >= 0.0) screen.EventTime = 0.0;
    if (!unknown_.empty()) traces_.Note = "No signal of the scope: " + Listed(unknown_);
    const auto note = [&](const std::string& text) {
      traces_.Note += (traces_.Note.empty() ? "" : "; ") + text;
    };
    if (!otherUnits_.empty())
      note("Units that are not known were read as the signals' own: " + Listed(otherUnits_));
    if (!AreEven(screen.Time)) {
      note("The times are not evenly spaced: Mean and RMS are those of the points");
    }
    return std::move(traces_);
  }

 private:
  struct Column {
    std::size_t Field;
    std::size_t Channel;
    double Factor;  // of its numbers in the signal's display unit
  };

  std::string TakeCaptions(std::string_view line, int number) {
    separator_ = TableSeparator(line);
    const TableFields captions = SplitTableLine(line, separator_, MaxTraces);
    if (captions.size() == MaxTraces) return LineFault(number, "too many columns");
    width_ = captions.size();
    const auto time = std::find_if(captions.begin(), captions.end(), [](std::string_view caption) {
      const std::string title = Lower(std::string(TableTitle(caption)));
      return title == "time" || title == "t";
    });
    if (time != captions.end()) time_ = static_cast<std::size_t>(time - captions.begin());
    if (TableNumber(captions[time_], separator_))
      return LineFault(number, "the columns have no captions");
    const auto seconds = SecondsIn(captions[time_]);
    if (!seconds) return LineFault(number, "time must be in s, ms or us");
    seconds_ = *seconds;
    for (std::size_t i = 0; i < captions.size(); ++i) {
      if (i != time_) AddColumn(i, captions[i]);
    }
    if (!columns_.empty()) return {};
    std::vector<std::string> names;
    for (const auto& channel : scope_.Channels()) names.push_back(channel->Name());
    return LineFault(number, "no column has the name of a signal (" + Listed(names) + ")");
  }

  // Of two columns that name one signal the first counts.
  void AddColumn(std::size_t field, std::string_view caption) {
    const auto channel = ChannelOf(caption);
    const bool isNew = channel && std::none_of(columns_.begin(), columns_.end(),
                                               [&](Column of) { return of.Channel == *channel; });
    if (isNew) {
      const std::string& own = scope_.Channels()[*channel]->Signal().Unit();
      const auto factor = InUnit(TableUnit(caption), own);
      columns_.push_back({field, *channel, factor.value_or(1.0)});
      if (!factor) otherUnits_.push_back(std::string(caption) + " as " + own);
    } else if (!caption.empty()) {
      unknown_.emplace_back(caption);
    }
  }

  // A name that is the same to the letter goes before one in another letter case.
  std::optional<std::size_t> ChannelOf(std::string_view caption) const {
    const auto find = [&](auto isNamed) -> std::optional<std::size_t> {
      const auto& channels = scope_.Channels();
      const auto found = std::find_if(channels.begin(), channels.end(), [&](const auto& channel) {
        return isNamed(channel->Name());
      });
      if (found == channels.end()) return std::nullopt;
      return static_cast<std::size_t>(found - channels.begin());
    };
    const std::string_view title = TableTitle(caption);
    const auto exact = find([&](const std::string& name) { return name == title; });
    if (exact) return exact;
    return find([&](const std::string& name) { return Lower(name) == Lower(std::string(title)); });
  }

  std::optional<double> Number(const TableFields& fields, std::size_t column) const {
    if (column >= fields.size()) return std::nullopt;
    return TableNumber(fields[column], separator_);
  }

  std::string TakePoint(const TableFields& fields, int number) {
    ScopeScreen& screen = traces_.Screen;
    // Halves of numbers must not be taken for numbers.
    const auto behind = fields.begin() + std::min(fields.size(), width_);
    if (std::any_of(behind, fields.end(), [](auto field) { return !field.empty(); })) {
      return TooManyFields(number);
    }
    const auto time = Number(fields, time_);
    if (!time || std::abs(*time * seconds_) > MaxTime) return LineFault(number, "no time");
    if (!screen.Time.empty() && *time * seconds_ <= screen.Time.back()) {
      return LineFault(number, "the time is not after the one before it");
    }
    if (screen.Time.size() == MaxTracePoints) {
      return LineFault(number, "more than " + std::to_string(MaxTracePoints) + " points");
    }
    screen.Time.push_back(*time * seconds_);
    for (const Column& column : columns_) {
      const ZelChannel& channel = *scope_.Channels()[column.Channel];
      const auto shown = Number(fields, column.Field);
      const double inUnit = shown.value_or(0.0) * column.Factor;
      const auto value = static_cast<float>(inUnit / channel.Signal().Multiplier());
      if (!shown || !std::isfinite(value)) {
        return LineFault(number, channel.Name() + " is not a number that a trace can have");
      }
      screen.Values[column.Channel].push_back(value);
    }
    return {};
  }

  const ZelScope& scope_;
  TraceText traces_;
  char separator_ = ',';
  std::size_t time_ = 0;
  std::size_t width_ = 0;  // columns that have captions
  double seconds_ = 1.0;
  std::vector<Column> columns_;
  std::vector<std::string> unknown_;     // captions
  std::vector<std::string> otherUnits_;  // captions, and the units that they were read in
};

}  // namespace

TraceText ParseTraces(std::string_view text, const ZelScope& scope) {
  TraceReader reader(scope);
  const std::string plain = TableText(text);
  LineReader lines(plain);
  for (std::string line; lines.Next(line);) {
    std::string fault = reader.Take(line, lines.Number());
    if (!fault.empty()) return {{}, {}, std::move(fault)};
  }
  return reader.Finish();
}

TraceText ReadTraceFile(const std::string& path, const ZelScope& scope) {
  std::string text;
  std::string fault = ReadTextFile(path, MaxBenchTable, text, BenchPatience);
  if (!fault.empty()) return {{}, {}, std::move(fault)};
  TraceText traces = ParseTraces(text, scope);
  if (!traces.Fault.empty()) traces.Fault = "\"" + path + "\": " + traces.Fault;
  return traces;
}

}  // namespace torvane
