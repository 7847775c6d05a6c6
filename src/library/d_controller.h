#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "core/time_driven.h"
#include "library/d_library_class.h"

namespace torvane {

class ZelBenchTop;

/// Sample clock. Each evaluation time of the solver ticks it; a tick at or past the next sample
/// time raises the sample flag and moves that time on by one period. A clock that has fallen
/// several periods behind catches up one period per tick.
///
/// Time-driven objects run after the model's equations, so a model sees the flag one evaluation
/// after the tick that raised it.
class ZelDController final : public TimeDriven {
 public:
  /// Period in seconds, above 0. The first sample falls due at time 0.
  ZelDController(ZelBenchTop& bench, double period);
  /// A copy ticks like the clock that it was made from, but the bench does not know it and it owns
  /// no blocks.
  ZelDController(const ZelDController& other)
      : TimeDriven(),
        bench_(other.bench_),
        nextSample_(other.nextSample_),
        period_(other.period_),
        sampleDue_(other.sampleDue_) {}
  ZelDController& operator=(const ZelDController& other) {
    nextSample_ = other.nextSample_;
    period_ = other.period_;
    sampleDue_ = other.sampleDue_;
    return *this;
  }

  void AtTime(double t) override {
    sampleDue_ = t >= nextSample_;
    if (sampleDue_) nextSample_ += period_;
  }
  void Reset(ResetKind kind) override;

  /// Sampled blocks run only in evaluations in which this is true.
  bool SampleDue() const { return sampleDue_; }

  double Period() const { return period_; }

  /// Changes the spacing of the samples from the next one on. The blocks keep their coefficients:
  /// those follow the blocks' own parameters only.
  void SetPeriod(double seconds) { period_ = seconds; }

  /// Builds a sampled block on this clock. The clock owns the block from then on and destroys it
  /// with itself; the model only uses the reference.
  template <class Block, class... Args>
  Block& Add(Args&&... args) {
    auto block = std::make_unique<Block>(this, std::forward<Args>(args)...);
    Block& added = *block;
    blocks_.push_back(std::move(block));
    return added;
  }

 private:
  const ZelBenchTop& bench_;
  double nextSample_ = 0.0;
  double period_;
  bool sampleDue_ = false;
  std::vector<std::unique_ptr<ZelDLibraryClass>> blocks_;
};

}  // namespace torvane
