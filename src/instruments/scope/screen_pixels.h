#pragma once

#include <span>
#include <vector>

#include "instruments/scope/scope.h"

namespace torvane {

/// Where a scope's points stand on a paint area of a given size, in pixels from its top left
/// corner. For a value v, its display multiplier m, width W and height H:
///
/// - a trace: y = -((v m + offset) / scale) H / 8 + H div 2, truncated, at most H - 2; it may lie
///   far above the area;
/// - the time axis, from the time t0 of the screen's first point:
///   x = ((v m - t0) / scale) W / 10, truncated, within 1..W - 2;
/// - another channel as the X axis: x = ((v m + offset) / scale) W / 10 + W div 2, truncated,
///   within 0..W - 1.
class ScreenPixels {
 public:
  /// An area without a size is reported when a pixel is asked for, which then is 0.
  ScreenPixels() = default;
  ScreenPixels(int width, int height) : width_(width), height_(height) {}

  int Width() const { return width_; }
  int Height() const { return height_; }

  /// Of a value on a displayed trace.
  int Y(const ZelChannel& channel, double value) const;
  /// 1 for a value whose trace is above the screen, -1 for one below it, 0 on the screen and on its
  /// edges.
  static int Beyond(const ZelChannel& channel, double value);
  /// Of a value on a channel that is the X axis.
  int X(const ZelChannel& channel, double value) const;
  /// Of a time on the time axis; `start` is t0, without the multiplier.
  int TimeX(const ZelChannel& time, double value, double start) const;

  /// X of a screen's points from the given one on, against the scope's X axis.
  void XOfPoints(const ZelScope& scope, const ScopeScreen& screen, int first,
                 std::vector<int>& pixels) const;

 private:
  int width_ = 0;
  int height_ = 0;
};

}  // namespace torvane
