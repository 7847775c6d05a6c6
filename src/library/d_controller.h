#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "core/carried.h"
#include "core/time_driven.h"
#include "library/d_library_class.h"

namespace torvane {

class ZelBenchTop;

/// The numbers of a sample clock. A tick at or past the next sample time raises the sample flag and
/// moves that time on by one period. A clock that has fallen several periods behind catches up one
/// period per tick.
class ControllerClock {
 public:
  void Tick(double t) {
    sampleDue_ = t >= nextSample_;
    if (sampleDue_) nextSample_ += period_;
  }

  /// Sampled blocks run only in evaluations in which this is true.
  bool SampleDue() const { return sampleDue_; }

  double Period() const { return period_; }
  double NextSample() const { return nextSample_; }

  /// Changes the spacing of the samples from the next one on, seconds.
  void SetPeriod(double seconds) { period_ = seconds; }

  /// The next sample falls due at t.
  void StartAt(double t) {
    nextSample_ = t;
    sampleDue_ = false;
  }

 private:
  double nextSample_ = 0.0;
  double period_ = 0.0;
  bool sampleDue_ = false;
};

/// Sample clock on a bench: each evaluation time of the solver ticks it.
///
/// Time-driven objects run after the model's equations, so a model sees the flag one evaluation
/// after the tick that raised it.
class ZelDController final : public TimeDriven, public Carrier {
 public:
  /// Period in seconds, above 0. The first sample falls due at time 0. The clock's numbers may lie
  /// in the struct that a model computes with; otherwise it has its own.
  ZelDController(ZelBenchTop& bench, double period, ControllerClock* clock = nullptr);

  void AtTime(double t) override { clock_.Tick(t); }
  const void* Moves() const override { return &clock_; }
  void Reset(ResetKind kind) override;
  void Carry(Carried& carried) override;

  bool SampleDue() const { return clock_.SampleDue(); }
  double Period() const { return clock_.Period(); }
  /// The blocks keep their coefficients: those follow the blocks' own parameters only.
  void SetPeriod(double seconds) { clock_.SetPeriod(seconds); }

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
  ControllerClock own_;
  ControllerClock& clock_;
  std::vector<std::unique_ptr<ZelDLibraryClass>> blocks_;
};

}  // namespace torvane
