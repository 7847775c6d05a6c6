#pragma once

#include <vector>

#include "core/time_driven.h"

namespace torvane {

class Carried;
class ZelDController;

/// Base of the sampled blocks: difference equations that a model steps once per sample of their
/// clock. They hold their own past values; the solver never sees them.
///
/// Blocks are made with ZelDController::Add, which makes the clock their one owner. A block without
/// a clock can be built but belongs to whoever built it and has a period of 0.
class ZelDLibraryClass {
 public:
  explicit ZelDLibraryClass(const ZelDController* clock) : clock_(clock) {}
  ZelDLibraryClass(const ZelDLibraryClass&) = delete;
  ZelDLibraryClass& operator=(const ZelDLibraryClass&) = delete;
  virtual ~ZelDLibraryClass() = default;

  /// The output at this sample for input x.
  virtual double Step(double x) = 0;

  /// Works the coefficients out again from the parameters and the clock's present period.
  virtual void ComputeCoefficients() {}

  /// The model was reset: past values that are not to stay start again at 0.
  virtual void Reset(ResetKind kind);

  /// Lists the past values.
  virtual void Carry(Carried& carried);

 protected:
  /// All that it remembers from one sample to the next.
  virtual std::vector<double*> PastValues() { return {}; }

  bool HasClock() const { return clock_ != nullptr; }

  /// The clock's sample period T, seconds.
  double Period() const;

 private:
  const ZelDController* clock_;
};

}  // namespace torvane
