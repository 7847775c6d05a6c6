#pragma once

namespace torvane {

/// How far a reset of the model goes.
enum class ResetKind {
  States,      ///< memory that is no state stays, unless it is not finite: it would never leave
  Everything,  ///< no memory stays; after an overflow even what is finite may be too large to leave
};

/// Something that sees every time at which the solver evaluates the model: a source, a sample
/// clock, a continuous block.
class TimeDriven {
 public:
  virtual ~TimeDriven() = default;
  virtual void AtTime(double t) = 0;

  /// What it moves as the solver's time goes by: itself, or the numbers that it stands for.
  virtual const void* Moves() const { return this; }

  /// The model was reset: outputs that mirror states follow them, memory is dropped as said.
  virtual void Reset(ResetKind /*kind*/) {}
};

}  // namespace torvane
