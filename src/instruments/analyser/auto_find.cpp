#include "instruments/analyser/auto_find.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>

#include "core/messages.h"
#include "core/text.h"
#include "instruments/analyser/analyser.h"
#include "instruments/analyser/response_reading.h"

namespace torvane {

namespace {

constexpr int RightMargin = 4;  // columns that a search over the plot leaves out

using Kind = FindTarget::Kind;
using CursorMode = FrequencyAnalyser::CursorMode;

std::string LowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

// The number in the text, with nothing but blanks between it and the unit.
std::optional<double> NumberIn(const std::string& text) {
  const std::size_t start = text.find_first_of("+-.0123456789");
  if (start == std::string::npos) return std::nullopt;
  return ParseNumber(text.substr(start, text.find('d', start) - start));
}

struct Columns {
  int First = 0;
  int Last = 0;
};

class Search {
 public:
  Search(const FrequencyAnalyser& analyser, int plotWidth, const FindTarget& target)
      : analyser_(analyser), width_(plotWidth), target_(target) {}

  std::optional<int> In(const Columns& columns) const {
    const bool level = target_.What == Kind::GainLevel || target_.What == Kind::PhaseLevel;
    return level ? Level(columns) : Extreme(columns);
  }

 private:
  std::optional<double> ValueAt(int column) const {
    const double hz = analyser_.AxisFrequency(static_cast<double>(column) / width_);
    const int slot = analyser_.CursorSlot();
    return target_.What == Kind::PhaseLevel ? analyser_.PhaseRead(slot, hz)
                                            : analyser_.GainRead(slot, hz);
  }

  std::optional<int> Level(const Columns& columns) const {
    std::optional<double> reference;
    double last = 0.0;
    for (int x = columns.First; x <= columns.Last; ++x) {
      auto value = ValueAt(x);
      if (!value) continue;
      if (!reference) {
        reference = value;
      } else {
        if (Turns()) value = last + std::remainder(*value - last, Turn);
        if (Reaches(*reference, *value)) return x;
      }
      last = *value;
    }
    return std::nullopt;
  }

  // A phase that is shown within a turn goes on through its wraps, and has the level each turn.
  bool Turns() const { return target_.What == Kind::PhaseLevel && !analyser_.View().Unwrapped; }

  bool Reaches(double reference, double value) const {
    const double low = std::min(reference, value);
    const double high = std::max(reference, value);
    const double turns = Turns() ? std::ceil((low - target_.Level) / Turn) : 0.0;
    const double level = target_.Level + turns * Turn;
    return low <= level && level <= high;
  }

  std::optional<int> Extreme(const Columns& columns) const {
    std::optional<int> found;
    double best = 0.0;
    for (int x = columns.First; x <= columns.Last; ++x) {
      const auto value = ValueAt(x);
      if (!value) continue;
      const bool better = target_.What == Kind::GainMax ? *value > best : *value < best;
      if (found && !better) continue;
      found = x;
      best = *value;
    }
    return found;
  }

  const FrequencyAnalyser& analyser_;
  int width_;
  const FindTarget& target_;
};

// An extreme is the one of the whole plot whatever was found on the way there.
std::optional<int> FindWithOneCursor(const FrequencyAnalyser& analyser, int plotWidth,
                                     const FindTarget& target) {
  const Search search(analyser, plotWidth, target);
  const int last = plotWidth - RightMargin;
  const bool extreme = target.What == Kind::GainMax || target.What == Kind::GainMin;
  std::optional<int> found;
  if (!extreme) found = search.In({analyser.CursorPixel(0), last});
  if (!found) found = search.In({0, last});
  if (!found) Note("Could not find " + analyser.FindType() + " on screen");
  return found;
}

std::optional<int> FindBetweenCursors(const FrequencyAnalyser& analyser, int plotWidth,
                                      const FindTarget& target) {
  const std::array at = {analyser.CursorPixel(0), analyser.CursorPixel(1)};
  const auto found =
      Search(analyser, plotWidth, target).In({std::min(at[0], at[1]), std::max(at[0], at[1])});
  if (!found) {
    Note("Could not find " + analyser.FindType() + " between cursors");
    return std::nullopt;
  }
  if (target.What == Kind::GainMax || target.What == Kind::GainMin) {
    const std::string name = target.What == Kind::GainMax ? "Gain Maximum" : "Gain Minimum";
    if (*found == at[0] || *found == at[1]) {
      Note(name + " at Cursor" + (*found == at[0] ? "1" : "2"));
      return std::nullopt;
    }
  }
  return found;
}

}  // namespace

std::optional<FindTarget> ParseFindTarget(const std::string& text) {
  const std::string lower = LowerCase(text);
  const auto contains = [&](const char* part) { return lower.find(part) != std::string::npos; };
  if (contains("d")) {
    const auto level = NumberIn(lower);
    if (!level) return std::nullopt;
    return FindTarget{contains("db") ? Kind::GainLevel : Kind::PhaseLevel, *level};
  }
  if (contains("gain max")) return FindTarget{Kind::GainMax, 0.0};
  if (contains("gain min")) return FindTarget{Kind::GainMin, 0.0};
  return std::nullopt;
}

std::optional<int> AutoFind(const FrequencyAnalyser& analyser, int plotWidth) {
  const CursorMode mode = analyser.Cursors();
  if (mode == CursorMode::None) return std::nullopt;
  if (mode == CursorMode::Two && analyser.CursorPixel(0) == analyser.CursorPixel(1)) {
    Note("Cursors are in same position.\nMove one cursor or configure screen for one cursor.");
    return std::nullopt;
  }
  const auto target = ParseFindTarget(analyser.FindType());
  if (!target) {
    Note("Cannot read Autofind selection");
  } else if (!analyser.TraceAt(analyser.CursorSlot()).Shown) {
    Note("Cursor waveform is not showing");
  } else if (mode == CursorMode::One) {
    return FindWithOneCursor(analyser, plotWidth, *target);
  } else {
    return FindBetweenCursors(analyser, plotWidth, *target);
  }
  return std::nullopt;
}

}  // namespace torvane
