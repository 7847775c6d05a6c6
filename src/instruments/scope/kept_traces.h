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
    int Count = 0;  ///< of screens kept so far and not undone
    int Shown = 0;  ///< which one, from 1; 0 for none
  };

  /// nullptr when there are none.
  const ScopeScreen* Shown() const;
  void Keep(ScopeScreen screen);
  /// In place of those that are shown, which no undo brings back then.
  void Renew(ScopeScreen screen);
  /// By which the one that is shown is known among all that ever were kept; 0 for none.
  int Identity() const;
  /// One that was kept before, by its identity; none where there is no such one any more.
  void Show(int identity);

  const State& Present() const { return state_; }
  /// Goes back, or forward, to a state that was.
  void Restore(const State& state);

 private:
  struct Screen {
    ScopeScreen Traces;
    int Identity = 0;
  };

  State state_;
  int made_ = 0;  ///< goes on through undo
  std::vector<Screen> screens_;
};

/// Kept traces as they stand on the time axis of a live screen: event upon event where both sweeps
/// began with one, else left edge upon left edge. What lies beyond the live screen's ten divisions
/// is cut off. Against another X axis they stay whole.
ScopeScreen OnTimeAxisOf(const ZelScope& scope, const ScopeScreen& kept, const ScopeScreen& live);

}  // namespace torvane
