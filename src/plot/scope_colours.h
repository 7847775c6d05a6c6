#pragma once

#include <QColor>

namespace torvane {

/// Colours of a scope's picture besides its traces. The traces are named by their colour in lists
/// and legends ("Blk", "Blue", ...), so they keep it on a dark desktop too: the plate under them
/// stays light, only dimmed, while everything around it follows the desktop.
struct ScopeColours {
  QColor Around;  ///< behind tick labels and legend
  QColor Text;    ///< tick labels and legend
  QColor Plate;   ///< behind the traces
  QColor Grid;    ///< division lines
  QColor Axis;    ///< centre axes and their ticks
  QColor Cursor;
  QColor LegendBack;  ///< behind a trace's mark in the legend

  static ScopeColours Light();
  static ScopeColours Dark();

  bool operator==(const ScopeColours&) const = default;
};

/// Colour of the displayed trace with that colour index.
QColor PenColour(int index);

}  // namespace torvane
