#pragma once

#include <QColor>
#include <array>

#include "instruments/scope/scope_channel.h"

namespace torvane {

/// Which colours traces have on a light ground. On a dark one they always stay apart.
enum class TraceColours {
  Standard,
  Apart,  ///< for every kind of colour vision; darker and lighter hues of the same names
};

/// How traces look besides their order: chosen by the user, for all windows alike.
struct TraceLook {
  TraceColours Colours = TraceColours::Standard;
  bool Patterns = false;  ///< each trace has a line pattern of its own

  bool operator==(const TraceLook&) const = default;
};

/// Colours of a picture of traces, on a light or a dark ground.
struct ScopeColours {
  using Pens = std::array<QColor, TraceColourCount>;

  QColor Around;  ///< behind tick labels and legend
  QColor Text;    ///< tick labels and legend
  QColor Plate;   ///< behind the traces
  QColor Grid;    ///< division lines
  QColor Axis;    ///< centre axes and their ticks
  QColor Cursor;
  Pens Traces;  ///< by colour index

  static ScopeColours Light(TraceColours traces = TraceColours::Standard);
  static ScopeColours Dark();

  const QColor& Trace(int index) const { return Traces.at(static_cast<std::size_t>(index)); }
  /// Of a trace's colour in lists: "Blue".
  const char* Label(int index) const;
  /// For text on a patch of a trace's colour.
  QColor TextOn(int index) const;

  bool operator==(const ScopeColours&) const = default;
};

}  // namespace torvane
