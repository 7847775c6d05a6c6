#include "instruments/scope/scope_cursors.h"

#include <algorithm>

namespace torvane {

std::optional<std::size_t> PointAtCursor(const ZelScope& scope, const ScopeScreen& screen,
                                         const ScreenPixels& pixels, int x) {
  for (std::size_t i = 0; i < screen.Time.size(); ++i) {
    if (pixels.TimeX(scope.TimeChannel(), screen.Time[i], screen.Left) > x) return i;
  }
  return std::nullopt;
}

std::optional<std::array<std::size_t, 2>> PointsAtCursors(const ZelScope& scope,
                                                          const ScopeScreen& screen,
                                                          const ScreenPixels& pixels) {
  const ScopeCursors& cursors = scope.Cursors();
  if (cursors.Mode == 0 || scope.XYMode()) return std::nullopt;
  const auto first = PointAtCursor(scope, screen, pixels, cursors.X[0]);
  const auto second =
      cursors.Mode == 1 ? first : PointAtCursor(scope, screen, pixels, cursors.X[1]);
  if (!first || !second) return std::nullopt;
  return std::array{std::min(*first, *second), std::max(*first, *second)};
}

std::optional<CursorReading> ReadCursors(const ZelScope& scope, const ScopeScreen& screen,
                                         const ScreenPixels& pixels) {
  const auto points = PointsAtCursors(scope, screen, pixels);
  if (!points) return std::nullopt;
  const auto [earlier, later] = *points;
  const bool two = scope.Cursors().Mode == 2;
  CursorReading reading;
  for (const std::size_t k : scope.DisplayedChannels()) {
    const std::vector<float>& trace = screen.Values[k];
    const double from = two ? trace[earlier] : 0.0;
    reading.Values.push_back(scope.Channels()[k]->Signal().Multiplier() * (trace[later] - from));
  }
  reading.Time =
      scope.TimeChannel().Signal().Multiplier() * (screen.Time[later] - screen.Time[earlier]);
  return reading;
}

}  // namespace torvane
