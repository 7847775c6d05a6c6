#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace torvane {

/// Signals over the time of a run, for a picture: however many rows there are, a few thousand
/// columns of each signal stand for them.
class RecordedRun {
 public:
  /// What of a signal lies within one column.
  struct Column {
    double First = 0.0;
    double Low = 0.0;
    double High = 0.0;
    double Last = 0.0;
  };
  /// A signal and its columns, in its display's unit.
  struct Signal {
    std::string Name;
    std::string Unit;
    std::vector<Column> Columns{};
  };

  RecordedRun(std::string title, std::string timeUnit, std::vector<Signal> recorded);

  /// A row: as many values as signals, in their displays' units. Times do not fall.
  void Add(double time, std::span<const double> values);

  const std::string& Title() const { return title_; }
  const std::string& TimeUnit() const { return timeUnit_; }
  const std::vector<Signal>& Signals() const { return signals_; }
  /// Of the first row of each column.
  const std::vector<double>& Times() const { return times_; }
  /// Of the last row.
  double End() const { return end_; }

 private:
  void Halve();

  std::string title_;
  std::string timeUnit_;
  std::vector<Signal> signals_;
  std::vector<double> times_;
  std::size_t rowsEach_ = 1;
  std::size_t rowsInLast_ = 0;
  double end_ = 0.0;
};

/// The signals of a run, by position, that share an axis.
struct RunStrip {
  std::vector<std::size_t> Signals;
  double Low = 0.0;
  double High = 0.0;
};

/// Signals of one unit share an axis unless one of them could not be read on it, being much smaller
/// than the others or far away from them; every other has an axis of its own.
std::vector<RunStrip> StripsOf(const RecordedRun& run);

}  // namespace torvane
