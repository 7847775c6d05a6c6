#pragma once

#include <optional>
#include <vector>

#include "instruments/scope/screen_measures.h"
#include "instruments/scope/screen_pixels.h"

namespace torvane {

/// What one displayed channel amounts to, in display units; what makes no sense is nothing.
struct ChannelMeasures {
  const ZelChannel* Channel = nullptr;
  std::optional<TraceMeasures> Trace;
  std::optional<StepMeasures> Step;  ///< as a response to the trigger's source
};

/// Measures each displayed channel, in channel order: over the whole screen or, with two cursors,
/// from one to the other.
std::vector<ChannelMeasures> MeasureScreen(const ZelScope& scope, const ScopeScreen& screen,
                                           const ScreenPixels& pixels);

}  // namespace torvane
