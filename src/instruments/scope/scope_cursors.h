#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "instruments/scope/screen_pixels.h"

namespace torvane {

/// What cursors tell of a sweep: at one cursor each displayed trace's value, between two the
/// difference from the earlier to the later one. In display units, by displayed channel in channel
/// order.
struct CursorReading {
  std::vector<double> Values;
  double Time = 0.0;  ///< between two cursors, display units of the time channel; else 0
};

/// The screen's first point to the right of the cursor at pixel x on the time axis; nothing when
/// the sweep has not come so far.
std::optional<std::size_t> PointAtCursor(const ZelScope& scope, const ScopeScreen& screen,
                                         const ScreenPixels& pixels, int x);

/// Points at the cursors, the earlier first; with one cursor both are the same. Nothing without
/// cursors, in X-Y mode, or when the sweep has not come to all of them.
std::optional<std::array<std::size_t, 2>> PointsAtCursors(const ZelScope& scope,
                                                          const ScopeScreen& screen,
                                                          const ScreenPixels& pixels);

/// Reads the scope's cursors on a screen shown with these pixels; nothing where PointsAtCursors
/// gives nothing.
std::optional<CursorReading> ReadCursors(const ZelScope& scope, const ScopeScreen& screen,
                                         const ScreenPixels& pixels);

}  // namespace torvane
