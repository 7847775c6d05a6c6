#pragma once

namespace torvane {

/// Something that sees every time at which the solver evaluates the model: a source, a sample
/// clock, a continuous block.
class TimeDriven {
 public:
  virtual ~TimeDriven() = default;
  virtual void AtTime(double t) = 0;

  /// The model was reset: outputs that mirror states follow them, and memory that is no longer
  /// finite is dropped, as it would never leave by itself.
  virtual void Reset() {}
};

}  // namespace torvane
