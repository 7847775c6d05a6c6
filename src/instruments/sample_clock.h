#pragma once

#include <cmath>
#include <limits>

namespace torvane {

/// Sampling times of an instrument, simulated seconds, the first of them 0.
///
/// The clock advances by one interval a sample from its own previous value, never from the present
/// time. When a solver step is longer than the interval, one sample is taken a step and the clock
/// falls ever further behind; it catches up one interval a step when the interval grows again.
class SampleClock {
 public:
  /// True when a sample is due at time t; the clock then moves on by the interval.
  bool TakeDue(double t, double interval) {
    serviced_ = t;
    if (t < next_) return false;
    next_ += interval;
    return true;
  }

  /// Time t was handed to others as well, when no sample was due.
  void Pass(double t) { serviced_ = t; }

  /// When the next sample is due; may lie in the past.
  double Next() const { return next_; }
  void SetNext(double next) { next_ = next; }

  /// The last time that was handed to TakeDue; minus infinity before the first.
  double Serviced() const { return serviced_; }

  /// The time to ask the bench for. A time that is already served would give a chunk without a
  /// step, over and over; a clock that has fallen behind asks for the least later time instead,
  /// which makes exactly one step.
  double Request() const {
    if (next_ > serviced_) return next_;
    return std::nextafter(serviced_, std::numeric_limits<double>::infinity());
  }

 private:
  double next_ = 0.0;
  double serviced_ = -std::numeric_limits<double>::infinity();
};

}  // namespace torvane
