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

/// How one trace of a screen follows another, in display units; what makes no sense is nothing.
struct ResponseMeasures {
  std::optional<StepMeasures> Step;
  std::optional<double> RmsError;  ///< of command less response
};

/// Measures a signal as the response to another one, over the whole screen.
ResponseMeasures MeasureResponse(const ZelScope& scope, const ScopeScreen& screen,
                                 const Variable& command, const Variable& response);

/// Measures each displayed channel, in channel order: over the whole screen or, with two cursors,
/// from one to the other.
std::vector<ChannelMeasures> MeasureScreen(const ZelScope& scope, const ScopeScreen& screen,
                                           const ScreenPixels& pixels);

}  // namespace torvane
