#pragma once

#include <QPolygonF>
#include <vector>

#include "instruments/analyser/response.h"
#include "instruments/analyser/response_axes.h"

namespace torvane {

/// The frequencies of a plot's columns.
class FrequencyColumns {
 public:
  FrequencyColumns(const ResponseAxes& axes, int width);

  int Width() const { return width_; }
  double Middle(int x) const { return halves_[static_cast<std::size_t>(2 * x + 1)]; }
  double LeftEdge(int x) const { return halves_[static_cast<std::size_t>(2 * x)]; }
  double RightEdge(int x) const { return LeftEdge(x + 1); }
  /// Where a frequency lies, in columns.
  double ColumnOf(double hz) const { return axes_.AxisShare(hz) * width_; }

 private:
  const ResponseAxes& axes_;
  int width_;
  std::vector<double> halves_;  // from half a column left of the plot, in steps of half a column
};

/// What a plot shows of one slot's gain, phase, group delay or coherence. X is in pixel columns
/// from the plot's left edge, Y is the value in dB, degrees or seconds, or a share.
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

/// Of a response as its view shows it.
ResponseLines MakeResponseLines(const Response& response, ResponseQuantity quantity,
                                const FrequencyColumns& columns);

}  // namespace torvane
