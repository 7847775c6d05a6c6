#pragma once

#include <optional>
#include <string>
#include <vector>

#include "instruments/scope/scope.h"

namespace torvane {

/// What one trace is: "Command  20 RPM/div (Off: 0)" and the colour it is drawn in.
struct LegendEntry {
  std::string Text;
  int Colour = -1;   ///< of the trace; -1 for what has none
  std::string Name;  ///< alone, where there is little room; empty for what is left out then

  bool operator==(const LegendEntry&) const = default;
};

/// One entry a displayed trace, in channel order, then the horizontal axis, and last what thin
/// lines are when traces are kept, with the constants that differ from those of the live ones.
std::vector<LegendEntry> ScopeLegend(const ZelScope& scope);

/// A displayed trace and where its zero is.
struct TraceMark {
  std::size_t Channel = 0;  ///< index in the scope's channels
  int Colour = 0;
  std::string Name;
  double Zero = 0.0;  ///< divisions above the screen's centre

  /// By which lists, legend and marks tell traces apart, counted from 1 in channel order.
  std::string Number() const { return std::to_string(Colour + 1); }

  bool operator==(const TraceMark&) const = default;
};

/// Where the trigger stands.
struct TriggerMark {
  int Colour = -1;        ///< of its source's trace; -1 when that is not displayed
  double Level = 0.0;     ///< divisions above the screen's centre
  double Position = 0.0;  ///< part of the screen's width

  bool operator==(const TriggerMark&) const = default;
};

/// Words and marks beside the screen. Pictures are painted anew when any of them changes.
struct ScopeLabels {
  std::vector<LegendEntry> Legend;
  std::string Axis;                 ///< whose values the left labels are: "vC [RPM]"
  std::vector<std::string> Left;    ///< values at the division lines of one trace, top first
  std::vector<std::string> Bottom;  ///< values at the division lines of the X axis, left first
  int LeftColour = -1;              ///< of the trace that the left labels belong to
  std::vector<TraceMark> Traces;    ///< in channel order
  std::optional<TriggerMark> Trigger;

  bool operator==(const ScopeLabels&) const = default;
};

/// Labels of the scope as it is set; the left axis shows the values of `reference` when that is
/// displayed, else of the first displayed channel. No trigger: that is for those who can move it.
ScopeLabels MakeScopeLabels(const ZelScope& scope, const ZelChannel* reference);

/// The trigger's place on the screen; nothing where no trigger acts: when sweeps follow each other
/// continuously, and on other X axes than time.
std::optional<TriggerMark> PlaceOfTrigger(const ZelScope& scope);

}  // namespace torvane
