#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {

/// What a generator plays that no formula gives: points over time, joined by straight lines. Before
/// the first point it has that one's value, behind the last one the last one's; two points at one
/// time are a jump.
class WaveTable {
 public:
  /// A value at a time.
  struct Point {
    double Time;  ///< seconds
    double Value;
  };
  static constexpr std::size_t MostPoints = 50000;

  /// There is a point at least, and none is before the one that it follows (Fault).
  WaveTable(std::string name, std::vector<Point> points);

  /// What is wrong with points: none, too many, time that goes back, what is no number. Empty when
  /// nothing is.
  static std::string Fault(const std::vector<Point>& points);

  const std::string& Name() const { return name_; }
  const std::vector<Point>& Points() const { return points_; }
  /// The points as a file's records have them, times and values between blanks. A table never
  /// changes, so neither do they.
  const std::vector<std::string>& RecordTexts() const { return recordTexts_; }

  double At(double t) const;
  /// The one time after `from` and up to `to` at which it jumps; nothing when there is none, or
  /// more than one.
  std::optional<double> JumpIn(double from, double to) const;
  /// Of a table that is played anew each period, seconds: the fractions of a period at which it
  /// jumps, where it begins anew too.
  std::vector<double> EdgesIn(double period) const;

 private:
  std::string name_;
  std::vector<Point> points_;
  std::vector<std::string> recordTexts_;
};

/// A table that was read, or in one line why not.
struct WaveReading {
  std::shared_ptr<const WaveTable> Table;
  std::string Fault;
  std::vector<std::string> Columns;  ///< those of values, by name where they have names
};

/// Reads a file of lines of fields that commas, semicolons, tabs or blanks divide; decimal commas
/// where it is not commas that divide. The first column is the time, which never goes back, in
/// seconds unless ms or us stand behind its name in brackets; the others have values. A line of
/// names may come first, and the column is the one of that name, or the only one. Blank lines and
/// lines that begin with "#" are passed over.
WaveReading ReadWaveFile(const std::string& path, std::string_view column = {});

}  // namespace torvane
