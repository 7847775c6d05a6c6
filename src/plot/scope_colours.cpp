#include "plot/scope_colours.h"

#include "instruments/scope/scope_channel.h"

namespace torvane {

ScopeColours ScopeColours::Light() {
  return {QColor(0xffffff), QColor(0x202428), QColor(0xfdfdfb), QColor(0xd9dee3),
          QColor(0x9aa3ab), QColor(0xc25a00), QColor(0xfdfdfb)};
}

ScopeColours ScopeColours::Dark() {
  return {QColor(0x2a2d30), QColor(0xe4e6e8), QColor(0xdfe1e0), QColor(0xc2c7ca),
          QColor(0x8b9297), QColor(0xa84c00), QColor(0xdfe1e0)};
}

QColor PenColour(int index) {
  return QColor::fromRgb(TraceColourAt(index).Rgb);
}

}  // namespace torvane
