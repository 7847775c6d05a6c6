#pragma once

#include "core/numeric.h"

namespace torvane {

/// Instants at equal intervals, counted in solver steps from a start at which the first is due.
///
/// An instant falls on the first step at or after it, as exact arithmetic has it. The bench's time
/// is a running sum that drifts against the number of steps (of 10 us by 0.2 in 1,000 s, by 11 in
/// 10,000 s) and instants are rounded too, so that comparing the two would slip by a step now and
/// then. What has passed is therefore counted in whole steps, and an instant counts as reached a
/// little ahead of it.
///
/// When a step is longer than the interval, one instant is taken a step and the clock falls ever
/// further behind.
class StepClock {
 public:
  /// Slacks, as parts of a step: what leaves an instant to the step after it, and what brings it to
  /// the nearest step, of two equally near the earlier.
  static constexpr double Sampling = 0.01;
  static constexpr double Nearest = 0.5 + 1e-6;

  explicit StepClock(double slack = Sampling) : slack_(slack) {}

  /// Begins at the bench's time `now` on a solver that makes steps of the given length, seconds;
  /// the first instant is due so many steps later.
  void Start(double now, double step, double wait = 0.0) {
    step_ = step;
    Serve(now);
    elapsed_ = 0.0;
    ahead_ = wait;
    fresh_ = wait == 0.0;
  }

  /// True when an instant is due at the bench's time t; the next one then is an interval later.
  bool TakeDue(double t, double interval) {
    const double gone = t - serviced_;
    const double steps = gone == stride_ ? 1.0 : Floor(gone / stride_ + 0.5);
    Serve(t);
    elapsed_ += steps;
    ahead_ -= steps;
    fresh_ = false;
    if (ahead_ > slack_) return false;
    ahead_ += interval / step_;
    return true;
  }

  /// Simulated seconds from the start to the last call of TakeDue, and to the next instant.
  double Elapsed() const { return elapsed_ * step_; }
  double Next() const { return (elapsed_ + ahead_) * step_; }

  /// The next instant, and one a step later than the last where that is passed, in steps from the
  /// start.
  double NextStep() const { return elapsed_ + (ahead_ > 1.0 ? ahead_ : 1.0); }
  /// Seconds as steps.
  double Steps(double seconds) const { return seconds / step_; }

  /// Whether so many seconds have passed since the start.
  bool Reached(double seconds) const { return elapsed_ >= seconds / step_ - slack_; }

  /// What the bench's time gains until so many seconds more count as reached.
  double Span(double seconds) const { return (seconds / step_ - slack_) * stride_; }

  /// The time to ask the bench for, a little ahead of the step that takes the next instant. The
  /// first is asked for at the start itself if it is due there; any other is at least one step
  /// away.
  double Request() const { return fresh_ ? serviced_ : TimeOf(ahead_); }
  /// The same for the step at which so many seconds have passed.
  double RequestAt(double seconds) const { return TimeOf(seconds / step_ - elapsed_); }

 private:
  void Serve(double t) {
    serviced_ = t;
    stride_ = (t + step_) - t;
  }
  double TimeOf(double ahead) const {
    const double steps = ahead - slack_ <= 1.0 ? 1.0 : -Floor(slack_ - ahead);
    return serviced_ + (steps - 0.25) * stride_;
  }

  double slack_;
  double serviced_ = 0.0;
  double step_ = 1.0;
  double stride_ = 1.0;   ///< what a step adds to the bench's time there, with its rounding
  double elapsed_ = 0.0;  ///< whole steps
  double ahead_ = 0.0;    ///< steps to the next instant; negative behind it
  bool fresh_ = true;
};

}  // namespace torvane
