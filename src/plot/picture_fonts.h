#pragma once

#include <QFont>
#include <QFontDatabase>
#include <QFontMetrics>
#include <algorithm>

namespace torvane {

/// The font at `share` of its size, where `ratio` pixels make one pixel of design. Its size is set
/// in pixels, so that one layout serves screens and pages of any resolution.
inline QFont ScaledFont(QFont font, double ratio, double share) {
  const QFontMetrics metrics(font);
  const int pixels = font.pixelSize() > 0 ? font.pixelSize() : qRound(metrics.height() * 0.86);
  font.setPixelSize(std::max(1, qRound(pixels * ratio * share)));
  return font;
}

/// The font of numbers at the axes of a plot.
inline QFont NumberFont(double ratio) {
  return ScaledFont(QFontDatabase::systemFont(QFontDatabase::FixedFont), ratio, 0.92);
}

}  // namespace torvane
