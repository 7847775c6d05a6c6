#pragma once

#include "core/bench.h"
#include "instruments/scope/scope.h"

namespace torvane::test {

/// A bench with two shown signals and one hidden, and a scope on them that is sampled by hand:
/// "Command" in black, "Speed" in blue.
struct TwoTraces {
  TwoTraces() { Scope.Trigger().SetMode(SweepMode::Cont); }

  /// Takes `count` samples of the present values, one sample interval apart.
  void Sample(int count) {
    for (int i = 0; i < count; ++i) {
      Time.Value = next_;
      Scope.Sample(next_);
      next_ += Scope.SampleInterval();
    }
  }

  ZelBenchTop Bench;
  TimeVariable Time{Bench, "Time", "sec", {0.01, 1.0}};
  Variable Command{Bench, "Command", "volts", {2.0, 1.0, 1.0, true}};
  Variable Hidden{Bench, "Hidden", "", {1.0}};
  Variable Speed{Bench, "Speed", "", {5.0, 0.0, 10.0, true}};
  ZelScope Scope{Bench, "MainScope"};

 private:
  double next_ = 0.0;
};

}  // namespace torvane::test
