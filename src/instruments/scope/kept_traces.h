#pragma once

#include <vector>

#include "instruments/scope/scope_memory.h"

namespace torvane {

class ZelScope;

/// The traces that a scope keeps for comparison: none or one screen at a time. Screens kept before
/// stay as long as an undo can bring them back.
class KeptTraces {
 public:
  /// What identifies a state to the history.
  struct State {
    int Count = 0;  ///< of screens kept so far
    int Shown = 0;  ///< which one, from 1; 0 for none
  };

  /// nullptr when there are none.
  const ScopeScreen* Shown() const;
  void Keep(ScopeScreen screen);
  /// In place of those that are shown, which no undo brings back then.
  void Renew(ScopeScreen screen);
  /// One that was kept before, from 1; 0 for none.
  void Show(int number) { state_.Shown = number; }

  const State& Present() const { return state_; }
  /// Goes back, or forward, to a state that was.
  void Restore(const State& state);

 private:
  State state_;
  std::vector<ScopeScreen> screens_;
};

/// Kept traces as they stand on the time axis of a live screen: event upon event where both sweeps
/// began with one, else left edge upon left edge. What lies beyond the live screen's ten divisions
/// is cut off. Against another X axis they stay whole.
ScopeScreen OnTimeAxisOf(const ZelScope& scope, const ScopeScreen& kept, const ScopeScreen& live);

}  // namespace torvane
