#pragma once

#include <QScreen>
#include <QWidget>

#include "plot/scope_colours.h"

namespace torvane {

/// No picture is larger than the displays, whatever size the window has been given; some platforms
/// say less than they show.
inline QSize LargestPicture(const QWidget& widget) {
  return widget.screen()->virtualSize().expandedTo(QSize(2560, 1600));
}

/// Colours of a picture on a desktop of that palette.
inline ScopeColours ColoursFor(const QPalette& palette,
                               TraceColours traces = TraceColours::Standard) {
  const bool dark = palette.color(QPalette::Window).lightness() < 128;
  return dark ? ScopeColours::Dark() : ScopeColours::Light(traces);
}

}  // namespace torvane
