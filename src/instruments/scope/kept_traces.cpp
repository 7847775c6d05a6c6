#include "instruments/scope/kept_traces.h"

#include <cmath>
#include <utility>

#include "core/undo.h"
#include "instruments/scope/scope.h"

namespace torvane {

namespace {

/// The part of a screen between two times; lines are cut where they leave it. Signals that the
/// screen has no trace of get none.
ScopeScreen CutTo(const ScopeScreen& screen, double from, double to) {
  ScopeScreen cut;
  cut.Origin = screen.Origin;
  cut.Values.resize(screen.Values.size());
  // A part of the way from one point to the next.
  const auto append = [&](std::size_t point, double part) {
    const auto at = [&](const auto& values) {
      const double value = values[point];
      return part == 0.0 ? value : value + part * (values[point + 1] - value);
    };
    cut.Time.push_back(at(screen.Time));
    for (std::size_t k = 0; k < cut.Values.size(); ++k) {
      if (screen.Values[k].empty()) continue;
      cut.Values[k].push_back(static_cast<float>(at(screen.Values[k])));
    }
  };
  for (std::size_t i = 0; i < screen.Time.size(); ++i) {
    const double time = screen.Time[i];
    if (time >= from && time <= to) append(i, 0.0);
    if (i + 1 == screen.Time.size()) break;
    const double next = screen.Time[i + 1];
    for (const double edge : {from, to}) {
      if (time < edge && edge < next) append(i, (edge - time) / (next - time));
    }
  }
  return cut;
}

}  // namespace

const ScopeScreen* KeptTraces::Shown() const {
  return state_.Shown == 0 ? nullptr : &screens_[static_cast<std::size_t>(state_.Shown - 1)].Traces;
}

// Screens beyond the count are of changes that were undone; those older than the history's depth
// are out of its reach.
void KeptTraces::Keep(ScopeScreen screen) {
  screens_.resize(static_cast<std::size_t>(state_.Count));
  screens_.push_back({std::move(screen), ++made_});
  state_.Shown = ++state_.Count;
  const int unreachable = state_.Count - ZelUndo::Depth - 1;
  if (unreachable > 0) screens_[static_cast<std::size_t>(unreachable - 1)] = {};
}

void KeptTraces::Renew(ScopeScreen screen) {
  if (Shown()) screens_[static_cast<std::size_t>(state_.Shown - 1)].Traces = std::move(screen);
}

int KeptTraces::Identity() const {
  return Shown() ? screens_[static_cast<std::size_t>(state_.Shown - 1)].Identity : 0;
}

// Those beyond the count are of changes that were undone.
void KeptTraces::Show(int identity) {
  state_.Shown = 0;
  for (int i = 0; identity > 0 && i < state_.Count; ++i) {
    if (screens_[static_cast<std::size_t>(i)].Identity == identity) state_.Shown = i + 1;
  }
}

void KeptTraces::Restore(const State& state) {
  const bool known = state.Count >= 0 && state.Count <= static_cast<int>(screens_.size()) &&
                     state.Shown >= 0 && state.Shown <= state.Count;
  if (known) state_ = state;
}

ScopeScreen OnTimeAxisOf(const ZelScope& scope, const ScopeScreen& kept, const ScopeScreen& live) {
  if (scope.XYMode()) return kept;
  double left = kept.Left;
  if (kept.EventTime && live.EventTime) left = *kept.EventTime - (*live.EventTime - live.Left);
  const ZelChannel& time = scope.TimeChannel();
  const double shown = std::abs(time.Horizontal().Scale) * ZelScope::HorizontalDivisions;
  ScopeScreen cut = CutTo(kept, left, left + shown / time.Signal().Multiplier());
  cut.Left = left;
  return cut;
}

}  // namespace torvane
