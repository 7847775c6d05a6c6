#pragma once

#include <optional>
#include <vector>

#include "instruments/analyser/analyser.h"

namespace torvane {

/// A response at one frequency, Hz, dB, degrees and seconds; nothing where there is none. Delay is
/// read where it is shown.
struct CursorPoint {
  double Hz = 0.0;
  std::optional<double> Gain;
  std::optional<double> Phase;
  std::optional<double> Delay;
};

/// What an analyser's cursors say of the trace that they read.
struct ResponseCursorReading {
  std::vector<CursorPoint> Points;        ///< a cursor each
  std::optional<CursorPoint> Difference;  ///< from cursor 1 to cursor 2, when there are two
  std::optional<double> Slope;            ///< between them, dB a decade
};

/// On a plot of so many columns.
ResponseCursorReading ReadResponseCursors(const FrequencyAnalyser& analyser, int plotWidth);

}  // namespace torvane
