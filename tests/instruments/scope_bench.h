#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/model.h"
#include "instruments/scope/scope.h"

namespace torvane::test {

/// A bench with a time and one shown signal, for driving a scope by hand. At 40 s a division the
/// 400 intervals of a screen are 1 s each, so sample n is taken at time n exactly.
struct ScopeBench {
  explicit ScopeBench(const DisplayDefaults& display = {.Shown = true})
      : Signal(Bench, "Signal", "", display) {}
  void At(double t, double value) {
    Time.Value = t;
    Signal.Value = value;
    GoesOn = Scope.Sample(t);
  }
  /// Samples first..last at one a second, the signal a ramp that equals the time.
  void Ramp(int first, int last) {
    for (int n = first; n <= last; ++n) At(n, n);
  }
  SignalChannel& Trace() { return *Scope.Channels()[0]; }
  ScopeScreen Screen(ScopeSweep sweep = ScopeSweep::Present) const {
    ScopeScreen screen;
    Scope.CopyScreen(sweep, screen);
    return screen;
  }
  /// Of the trace.
  std::vector<float> Values(ScopeSweep sweep = ScopeSweep::Present) const {
    return Screen(sweep).Values[0];
  }

  ZelBenchTop Bench;
  TimeVariable Time{Bench, "Time", "sec", {.Scale = 40.0}};
  Variable Signal;
  ZelScope Scope{Bench, "MainScope"};
  bool GoesOn = true;
};

}  // namespace torvane::test
