#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

namespace torvane {

/// How far a meter's reading, and the signal that it reads, have moved over the last one to two
/// seconds of simulated time.
class ReadingSpread {
 public:
  static constexpr double Span = 1.0;  // seconds

  void Add(double t, double reading, double signal) {
    if (t >= end_) {
      before_ = now_;
      now_ = {};
      end_ = t + Span;
    }
    now_.Low = std::min(now_.Low, reading);
    now_.High = std::max(now_.High, reading);
    now_.Peak = std::max(now_.Peak, std::abs(signal));
  }
  void Clear() { *this = {}; }

  /// Nothing has been added yet.
  bool IsEmpty() const { return now_.High < now_.Low; }
  double Low() const { return std::min(before_.Low, now_.Low); }
  double High() const { return std::max(before_.High, now_.High); }
  /// Largest magnitude of the signal.
  double Peak() const { return std::max(before_.Peak, now_.Peak); }

 private:
  struct Extremes {
    double Low = std::numeric_limits<double>::infinity();
    double High = -std::numeric_limits<double>::infinity();
    double Peak = 0.0;
  };
  Extremes before_;
  Extremes now_;
  double end_ = -std::numeric_limits<double>::infinity();
};

}  // namespace torvane
