#pragma once

#include <optional>
#include <span>
#include <vector>

#include "instruments/analyser/response_curve.h"

namespace torvane {

/// A point of a response's complex logarithm: gain in dB, and unwrapped phase in degrees.
struct LogPoint {
  double LogHz = 0.0;
  double Gain = 0.0;
  double Phase = 0.0;
};

/// Those points of an unwrapped response that can be trusted: without single ones that stand out
/// between neighbours which agree, as a bin does in which the excitation was weak.
void TakeLogPoints(std::span<const ResponsePoint> unwrapped, std::vector<LogPoint>& points);

/// The standard deviation with which a quantity scatters around a point, from the fourth
/// differences of the points there; nothing where they are too few to tell.
std::optional<double> ScatterAt(std::span<const LogPoint> points, std::size_t index,
                                double LogPoint::*quantity);

/// A level of gain or phase.
struct Level {
  double LogPoint::*Crosses = nullptr;
  double LogPoint::*Read = nullptr;  ///< what is read where it is crossed
  double At = 0.0;
  double Every = 0.0;  ///< the level repeats at this distance; 0 for one level alone
  /// Excursions beyond the level that are scatter in any case, and where points are too few to tell
  /// how much they scatter.
  double LeastExcursion = 0.0;
  double UsualExcursion = 0.0;
  double MostScatter = 0.0;  ///< standard deviation above which nothing can be read
};

/// A frequency at which a response crosses a level, and what is read there.
struct LevelCrossing {
  double Hz = 0.0;
  double Value = 0.0;
  bool Falls = false;
};

/// Where a response crosses a level, in order of frequency.
///
/// Between two points a response goes straight as a complex number: its logarithm over that of the
/// frequency, as along the asymptotes and the turns of a loop, or its reciprocal or itself over the
/// frequency, as through a resonance or its opposite, where that tells the points around better.
///
/// A response that scatters about a level crosses it again and again. Crossings between which it
/// stays within four standard deviations of its scatter there are one, in their middle, or none
/// where it comes back to the side that it came from. How much it scatters is told by the fourth
/// differences of the points around, in which what is smooth cancels: a peak of a narrow resonance
/// that just reaches the level crosses it twice.
class LevelCrossings {
 public:
  LevelCrossings(std::span<const LogPoint> points, const Level& level);

  const std::vector<LevelCrossing>& All() const { return all_; }
  /// Crossings were left out because the response scatters too much there.
  bool Scattered() const { return mostScatter_ > level_.MostScatter; }
  /// The greatest standard deviation at a crossing, of the limit.
  double Scatter() const { return mostScatter_ / level_.MostScatter; }

 private:
  struct Cluster {
    double Level = 0.0;
    std::size_t Last = 0;  // index of the point before the last crossing
    double LogHz = 0.0;
    double Value = 0.0;
    bool Falls = false;
    int Count = 0;
  };
  void Cross(std::size_t below, double level);
  void Close();
  bool Returns(std::size_t below, double level, std::optional<double> scatter) const;

  std::span<const LogPoint> points_;
  Level level_;
  Cluster cluster_;
  std::vector<LevelCrossing> all_;
  double mostScatter_ = 0.0;
};

}  // namespace torvane
