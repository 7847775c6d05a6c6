#include "instruments/scope/scope_csv.h"

#include "core/csv.h"
#include "core/text.h"

namespace torvane {

namespace {

// What the samples stand for, in the signal's display units. They are single-precision numbers, and
// so is what is printed.
std::string DisplayText(const ZelChannel& channel, float value) {
  return FormatShortestSingle(static_cast<float>(value * channel.Signal().Multiplier()));
}

}  // namespace

std::string ScreenCsv(const ZelScope& scope, const ScopeScreen& screen) {
  const std::vector<std::size_t> shown = scope.DisplayedChannels();
  std::vector<std::string> fields{"Time"};
  for (const std::size_t i : shown) fields.push_back(scope.Channels()[i]->Name());
  std::string lines = CsvLine(fields);
  for (std::size_t point = 0; point < screen.Time.size(); ++point) {
    fields = {FormatShortest(screen.Time[point])};
    for (const std::size_t i : shown) {
      fields.push_back(DisplayText(*scope.Channels()[i], screen.Values[i][point]));
    }
    lines += CsvLine(fields);
  }
  return lines;
}

}  // namespace torvane
