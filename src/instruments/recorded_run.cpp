#include "instruments/recorded_run.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace torvane {
namespace {

constexpr std::size_t MostRunColumns = 4096;
constexpr double LeastShareOfAxis = 1.0 / 15.0;  // of an axis that a moving signal fills at least
constexpr std::size_t MostOnAxis = 8;
constexpr std::size_t MostStrips =
    8;  // beyond it signals of one unit are together whatever their size

struct RunRange {
  double Low = HUGE_VAL;
  double High = -HUGE_VAL;

  double Span() const { return High - Low; }
  bool Moves() const { return Span() > 1e-9 * std::max(std::abs(Low), std::abs(High)); }
  RunRange With(const RunRange& other) const {
    return {std::min(Low, other.Low), std::max(High, other.High)};
  }
};

RunRange RunRangeOf(const RecordedRun::Signal& signal) {
  RunRange range;
  for (const RecordedRun::Column& column : signal.Columns) {
    range = range.With({column.Low, column.High});
  }
  return range;
}

std::vector<RunStrip> StripsBy(const RecordedRun& run, bool bySize) {
  std::vector<RunRange> ranges;
  for (const RecordedRun::Signal& signal : run.Signals()) ranges.push_back(RunRangeOf(signal));
  std::vector<RunStrip> strips;
  const auto fits = [&](const RunStrip& strip, std::size_t k) {
    if (run.Signals()[strip.Signals.front()].Unit != run.Signals()[k].Unit) return false;
    if (strip.Signals.size() == MostOnAxis) return false;
    const RunRange all = RunRange{strip.Low, strip.High}.With(ranges[k]);
    const auto readable = [&](std::size_t one) {
      return !ranges[one].Moves() || ranges[one].Span() >= LeastShareOfAxis * all.Span();
    };
    return !bySize ||
           (readable(k) && std::all_of(strip.Signals.begin(), strip.Signals.end(), readable));
  };
  for (std::size_t k = 0; k < ranges.size(); ++k) {
    const auto found = std::find_if(strips.begin(), strips.end(),
                                    [&](const RunStrip& strip) { return fits(strip, k); });
    RunStrip& strip =
        found == strips.end() ? strips.emplace_back(RunStrip{{}, HUGE_VAL, -HUGE_VAL}) : *found;
    strip.Signals.push_back(k);
    strip.Low = std::min(strip.Low, ranges[k].Low);
    strip.High = std::max(strip.High, ranges[k].High);
  }
  return strips;
}

}  // namespace

RecordedRun::RecordedRun(std::string title, std::string timeUnit, std::vector<Signal> recorded)
    : title_(std::move(title)), timeUnit_(std::move(timeUnit)), signals_(std::move(recorded)) {}

void RecordedRun::Add(double time, std::span<const double> values) {
  const bool begins = times_.empty() || rowsInLast_ == rowsEach_;
  if (begins && times_.size() == MostRunColumns) {
    Halve();
    Add(time, values);
    return;
  }
  if (begins) {
    times_.push_back(time);
    rowsInLast_ = 0;
  }
  ++rowsInLast_;
  end_ = time;
  for (std::size_t k = 0; k < signals_.size(); ++k) {
    std::vector<Column>& columns = signals_[k].Columns;
    const double value = values[k];
    if (begins) {
      columns.push_back({value, value, value, value});
      continue;
    }
    Column& column = columns.back();
    column.Low = std::min(column.Low, value);
    column.High = std::max(column.High, value);
    column.Last = value;
  }
}

void RecordedRun::Halve() {
  const std::size_t half = times_.size() / 2;
  for (std::size_t i = 0; i < half; ++i) times_[i] = times_[2 * i];
  times_.resize(half);
  for (Signal& signal : signals_) {
    std::vector<Column>& all = signal.Columns;
    for (std::size_t i = 0; i < half; ++i) {
      const Column& a = all[2 * i];
      const Column& b = all[2 * i + 1];
      all[i] = {a.First, std::min(a.Low, b.Low), std::max(a.High, b.High), b.Last};
    }
    all.resize(half);
  }
  rowsInLast_ = rowsEach_ *= 2;
}

std::vector<RunStrip> StripsOf(const RecordedRun& run) {
  std::vector<RunStrip> strips = StripsBy(run, true);
  return strips.size() > MostStrips ? StripsBy(run, false) : strips;
}

}  // namespace torvane
