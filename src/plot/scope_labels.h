#pragma once

#include <string>
#include <vector>

#include "instruments/scope/scope.h"

namespace torvane {

/// What one trace is: "Command  20 RPM/div (Off: 0)" and the colour it is drawn in.
struct LegendEntry {
  std::string Text;
  int Colour = -1;  ///< of the trace; -1 for what has none

  bool operator==(const LegendEntry&) const = default;
};

/// One entry a displayed trace, in channel order, then the horizontal axis, and last what thin
/// lines are when traces are kept.
std::vector<LegendEntry> ScopeLegend(const ZelScope& scope);

/// The words beside the screen. Pictures are painted anew when any of them changes.
struct ScopeLabels {
  std::vector<LegendEntry> Legend;
  std::vector<std::string> Left;    ///< values at the division lines of one trace, top first
  std::vector<std::string> Bottom;  ///< values at the division lines of the X axis, left first
  int LeftColour = -1;              ///< of the trace that the left labels belong to

  bool operator==(const ScopeLabels&) const = default;
};

/// Labels of the scope as it is set; the left axis shows the values of `reference` when that is
/// displayed, else of the first displayed channel.
ScopeLabels MakeScopeLabels(const ZelScope& scope, const ZelChannel* reference);

}  // namespace torvane
