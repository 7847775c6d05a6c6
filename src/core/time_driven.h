#pragma once

namespace torvane {

/// Something that sees every time at which the solver evaluates the model: a source, a sample
/// clock, a continuous block.
class TimeDriven {
 public:
  virtual ~TimeDriven() = default;
  virtual void AtTime(double t) = 0;
};

}  // namespace torvane
