#include "plot/scope/scope_labels.h"

#include <algorithm>
#include <cmath>

#include "core/text.h"
#include "instruments/analyser/trace_origin.h"

namespace torvane {

namespace {

std::string PerDivision(const ZelChannel& channel, const AxisScale& axis) {
  const std::string& unit = channel.Signal().Unit();
  return channel.Name() + " " + FormatEdit(axis.Scale) + (unit.empty() ? "" : " " + unit) + "/div";
}

std::string WithOffset(const ZelChannel& channel, const AxisScale& axis) {
  return PerDivision(channel, axis) + " (Off: " + FormatEdit(axis.Offset) + ")";
}

// The difference of a scale's multiple and an offset often is a rounding error away from 0.
std::string ValueText(double value, double scale) {
  if (std::abs(value) < std::abs(scale) * 1e-9) value = 0.0;
  return FormatGeneral(value, 4, 1);
}

// Far off the screen one place is as good as another; what is not a number never gets here.
double DivisionsAbove(double value, const AxisScale& axis) {
  constexpr double farthest = 1e3;
  return std::clamp((value + axis.Offset) / axis.Scale, -farthest, farthest);
}

std::vector<TraceMark> TraceMarks(const ZelScope& scope) {
  std::vector<TraceMark> marks;
  for (const std::size_t k : scope.DisplayedChannels()) {
    const ZelChannel& channel = *scope.Channels()[k];
    marks.push_back({k, channel.Colour(), channel.Name(), DivisionsAbove(0.0, channel.Vertical())});
  }
  return marks;
}

const ZelChannel* LeftAxisChannel(const ZelScope& scope, const ZelChannel* reference) {
  if (reference && reference->Displayed()) return reference;
  const ZelChannel& first = scope.FirstDisplayedChannel();
  return first.Displayed() ? &first : nullptr;
}

// Where there is little room, the constants go before the word does.
LegendEntry KeptEntry(const ZelScope& scope, const ScopeScreen& kept) {
  const std::string name = "Thin: kept";
  const bool known = kept.Origin && scope.Origin();
  const std::string differs = known ? KeptOriginText(*kept.Origin, *scope.Origin()) : "";
  return {differs.empty() ? name : name + ", " + differs, -1, name};
}

}  // namespace

std::vector<LegendEntry> ScopeLegend(const ZelScope& scope) {
  std::vector<LegendEntry> entries;
  for (const auto& channel : scope.Channels()) {
    if (!channel->Displayed()) continue;
    entries.push_back(
        {WithOffset(*channel, channel->Vertical()), channel->Colour(), channel->Name()});
  }
  if (const ZelChannel* horizontal = scope.HorizontalChannel()) {
    const AxisScale& axis = horizontal->Horizontal();
    const std::string text =
        scope.XYMode() ? WithOffset(*horizontal, axis) : PerDivision(*horizontal, axis);
    entries.push_back({"[Horiz]: " + text, -1, {}});
  }
  if (const ScopeScreen* const kept = scope.Kept()) entries.push_back(KeptEntry(scope, *kept));
  return entries;
}

ScopeLabels MakeScopeLabels(const ZelScope& scope, const ZelChannel* reference) {
  ScopeLabels labels;
  labels.Legend = ScopeLegend(scope);
  if (const ZelChannel* left = LeftAxisChannel(scope, reference)) {
    labels.LeftColour = left->Colour();
    const std::string& unit = left->Signal().Unit();
    labels.Axis = left->Name() + (unit.empty() ? "" : " [" + unit + "]");
    const AxisScale& axis = left->Vertical();
    for (int line = 0; line <= ZelScope::VerticalDivisions; ++line) {
      const int divisions = ZelScope::VerticalDivisions / 2 - line;
      labels.Left.push_back(ValueText(divisions * axis.Scale - axis.Offset, axis.Scale));
    }
  }
  if (const ZelChannel* horizontal = scope.HorizontalChannel()) {
    const AxisScale& axis = horizontal->Horizontal();
    for (int line = 0; line <= ZelScope::HorizontalDivisions; ++line) {
      // The time axis counts from the screen's left edge, any other channel from its centre.
      const double value =
          scope.XYMode() ? (line - ZelScope::HorizontalDivisions / 2) * axis.Scale - axis.Offset
                         : line * axis.Scale;
      labels.Bottom.push_back(ValueText(value, axis.Scale));
    }
  }
  labels.Traces = TraceMarks(scope);
  return labels;
}

std::optional<TriggerMark> PlaceOfTrigger(const ZelScope& scope) {
  const ZelTrigger& trigger = scope.Trigger();
  if (scope.XYMode() || trigger.Mode() == SweepMode::Cont) return std::nullopt;
  const ZelChannel& source = trigger.Source();
  return TriggerMark{source.Displayed() ? source.Colour() : -1,
                     DivisionsAbove(trigger.Level(), source.Vertical()),
                     std::trunc(trigger.Position()) * 0.01};
}

}  // namespace torvane
