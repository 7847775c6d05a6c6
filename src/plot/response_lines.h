#pragma once

#include <QPolygonF>
#include <vector>

#include "instruments/analyser/analyser.h"

namespace torvane {

enum class ResponseQuantity { Gain, Phase, Coherence };

/// What a plot shows of one slot's gain, phase or coherence. X is in pixel columns from the plot's
/// left edge, Y is the value in dB or degrees, or a share.
///
/// Where there are fewer bins than columns, lines go from bin to bin as the response is read
/// between them. Where there are more, a column shows the range of all the values between its
/// edges: no peak is lost, however narrow. Between the two sides of a phase's wrap there is
/// nothing.
struct ResponseLines {
  /// The values within a column, joined to the one before it.
  struct Bar {
    int X = 0;
    double Low = 0.0;
    double High = 0.0;
  };

  std::vector<QPolygonF> Lines;
  std::vector<Bar> Bars;
  /// The same of bins in which the excitation had no power: they are noise.
  std::vector<Bar> Faint;
  /// The bins that have a column of their own.
  QPolygonF Points;
  /// Where the trace passes the middle of each column; not a number where it does not.
  std::vector<double> Columns;
};

/// Lines for a plot of so many columns.
ResponseLines MakeResponseLines(FrequencyAnalyser& analyser, int slot, ResponseQuantity quantity,
                                int width);

}  // namespace torvane
