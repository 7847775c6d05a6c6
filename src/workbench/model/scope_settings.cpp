#include "workbench/model/scope_settings.h"

#include <algorithm>
#include <sstream>

#include "core/messages.h"
#include "core/text.h"
#include "workbench/model/assignment.h"
#include "workbench/model/model_options.h"
#include "workbench/model/scope_run.h"
#include "workbench/unknown_name.h"

namespace torvane {
namespace {

ZelChannel& NamedChannel(ZelScope& scope, const std::string& name) {
  return *scope.FindChannel(NamedSignal(scope.Bench(), name).Name());
}

int Choice(const std::string& what, const std::string& text,
           const std::vector<std::string>& names) {
  const int index = IndexOfName(text, names);
  if (index < 0) throw UnknownName(what, text, names);
  return index;
}

void ShowTraces(ZelScope& scope, const std::string& list) {
  std::vector<ZelChannel*> shown;
  std::istringstream names(list);
  for (std::string name; std::getline(names, name, ',');) {
    shown.push_back(&NamedChannel(scope, name));
  }
  if (shown.size() > TraceColourCount) {
    throw UsageError("a scope shows no more than " + std::to_string(TraceColourCount) + " traces");
  }
  for (const auto& channel : scope.Channels()) scope.SetDisplayed(*channel, false);
  for (ZelChannel* channel : shown) scope.SetDisplayed(*channel, true);
}

struct TraceNumber {
  ZelChannel& Channel;
  double Number;
};

TraceNumber TraceNumberOf(ZelScope& scope, const std::string& option, const std::string& text) {
  const Assignment assignment = SplitAssignment(option, text);
  const auto number = ParseNumber(assignment.Value);
  if (!number) throw UsageError(option + " needs SIGNAL=NUMBER, not \"" + text + "\"");
  return {NamedChannel(scope, assignment.Name), *number};
}

void PlaceTraces(ZelScope& scope, const ScopeSettings& settings) {
  for (const std::string& text : settings.Scales) {
    const auto [channel, scale] = TraceNumberOf(scope, "--scale", text);
    if (scale == 0.0) throw UsageError("--scale must not be 0: \"" + text + "\"");
    scope.SetVerticalScale(channel, scale);
  }
  for (const std::string& text : settings.Shifts) {
    const auto [channel, shift] = TraceNumberOf(scope, "--shift", text);
    scope.SetVerticalOffset(channel, shift);
  }
}

}  // namespace

void Apply(const ZelBenchTop& bench, const ScopeSettings& settings) {
  const bool texts =
      !(settings.Show.empty() && settings.Scales.empty() && settings.Shifts.empty() &&
        settings.TrigMode.empty() && settings.TrigSource.empty() && settings.TrigSlope.empty());
  if (!texts && !settings.TimeBase && !settings.TrigLevel && !settings.TrigPosition) return;
  ZelScope& scope = FirstScope(bench);
  ZelTrigger& trigger = scope.Trigger();
  if (!settings.Show.empty()) ShowTraces(scope, settings.Show);
  PlaceTraces(scope, settings);
  if (settings.TimeBase) scope.SetHorizontalScale(scope.TimeChannel(), *settings.TimeBase);
  if (!settings.TrigSource.empty()) trigger.SetSource(NamedChannel(scope, settings.TrigSource));
  if (!settings.TrigMode.empty()) {
    static constexpr std::array modes{SweepMode::Cont, SweepMode::Auto, SweepMode::Normal};
    const int mode = Choice("trigger mode", settings.TrigMode, {"Cont", "Auto", "Normal"});
    trigger.SetMode(modes.at(static_cast<std::size_t>(mode)));
  }
  if (!settings.TrigSlope.empty()) {
    trigger.SetPositiveSlope(Choice("trigger slope", settings.TrigSlope, {"Pos", "Neg"}) == 0);
  }
  if (settings.TrigLevel) trigger.SetLevel(*settings.TrigLevel);
  if (!settings.TrigPosition) return;
  trigger.SetPosition(*settings.TrigPosition);
  if (trigger.Position() == *settings.TrigPosition) return;
  Note("--trig-position is limited to " + FormatShortest(trigger.Position()));
}

}  // namespace torvane
