#pragma once

#include <optional>
#include <vector>

#include "instruments/scope/screen_measures.h"
#include "instruments/scope/screen_pixels.h"
#include "instruments/scope/step_measures.h"

namespace torvane {

/// What one displayed channel amounts to, in display units; what makes no sense is nothing.
struct ChannelMeasures {
  const ZelChannel* Channel = nullptr;
  std::optional<TraceMeasures> Trace;
  std::optional<StepMeasures> Step;  ///< as a response to the trigger's source; that has none
};

/// Measures each displayed channel, in channel order: over the whole screen or, with two cursors,
/// from one to the other. A step counts from its own time, to the solver's step, where a generator
/// tells when it jumped; else from the middle of the time between the two points.
std::vector<ChannelMeasures> MeasureScreen(const ZelScope& scope, const ScopeScreen& screen,
                                           const ScreenPixels& pixels);
/// As MeasureScreen, of the whole screen wherever cursors stand.
std::vector<ChannelMeasures> MeasureWholeScreen(const ZelScope& scope, const ScopeScreen& screen);

}  // namespace torvane
