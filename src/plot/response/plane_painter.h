#pragma once

#include <QFont>
#include <QPainter>
#include <QPolygonF>
#include <QRect>
#include <array>
#include <optional>
#include <vector>

#include "plot/response/plane_axes.h"
#include "plot/response/response_legend.h"

namespace torvane {

/// Paints an analyser's responses without a frequency axis, at the frequencies within its limits:
/// as a Nyquist plot, imaginary against real part in the analyser's window of that plane with the
/// unit circle, or as a Nichols plot, gain against phase on the scales of the analyser with the
/// contours of equal gain of the closed loop. Both mark the point -1, at which a closed loop is
/// about to oscillate. Traces, legend and lengths are as in ResponsePainter's plots.
class PlanePainter {
 public:
  explicit PlanePainter(const FrequencyAnalyser& analyser)
      : analyser_(analyser), legend_(analyser) {}

  /// Area of the whole picture. Painting is of the analyser as it was laid out.
  void Layout(const QSize& size, double pixelRatio, const TraceLook& look = {});
  void Paint(QPainter& painter, const ScopeColours& colours) const;

  /// The analyser's cursors, as far as they are on, at their frequencies on a plot of so many
  /// columns.
  void PaintCursors(QPainter& painter, const ScopeColours& colours, int plotWidth) const;

  /// Where the trace which the cursors read is at a frequency.
  std::optional<QPointF> PlaceAt(double hz) const;
  /// The other way round: the frequency of its point that is nearest.
  struct Nearest {
    double Hz = 0.0;
    double Distance = 0.0;  ///< pixels of design
  };
  std::optional<Nearest> NearestTo(const QPointF& at) const;

  /// Real and imaginary part, or phase and gain, on the picture.
  const PlaneAxes& Axes() const { return axes_; }

 private:
  struct Point {
    double Hz = 0.0;
    double Gain = 0.0;
    double Phase = 0.0;
    QPointF At;
  };

  bool IsNyquist() const { return analyser_.View().Plot == ResponsePlot::Nyquist; }
  void LayOutAxes();
  double FittingScale() const;
  QRectF Near() const;
  std::vector<Point> ReadPoints(int slot) const;
  const std::vector<Point>& PointsOf(int slot) const;
  QPointF Place(double gain, double phase) const;
  void PaintGrid(QPainter& painter, const ScopeColours& colours) const;
  /// Of the grid.
  struct Line {
    bool Vertical = false;
    double Value = 0.0;
    QString Label;
  };
  std::vector<Line> Lines(bool vertical) const;
  void PaintLine(QPainter& painter, const ScopeColours& colours, const Line& at) const;
  void PaintCaptions(QPainter& painter, const ScopeColours& colours) const;
  void PaintUnitCircle(QPainter& painter, const ScopeColours& colours) const;
  void PaintContours(QPainter& painter, const ScopeColours& colours) const;
  void PaintContourLabels(QPainter& painter, const ScopeColours& colours) const;
  void PaintCriticalPoints(QPainter& painter, const ScopeColours& colours) const;
  void PaintTrace(QPainter& painter, const ScopeColours& colours, int slot) const;
  /// Whole turns from the first to the last that the phase axis reaches into.
  struct Turns {
    int First = 0;
    int Last = 0;
  };
  Turns TurnsOnPlate() const;
  int Scaled(double length) const { return qRound(length * ratio_); }

  const FrequencyAnalyser& analyser_;
  ResponseLegend legend_;
  TraceLook look_;
  std::array<std::vector<Point>, PaintOrder.size()> points_;
  double ratio_ = 1.0;
  QSize size_;
  QRect plate_;
  PlaneAxes axes_;
  QFont textFont_;
  QFont numberFont_;
};

}  // namespace torvane
