#pragma once

#include <QFont>
#include <QPainter>
#include <QRect>

#include "instruments/scope/scope.h"
#include "plot/scope/scope_labels.h"
#include "plot/scope/screen_marks.h"
#include "plot/scope_colours.h"
#include "plot/trace_painter.h"

namespace torvane {

/// Paints a scope: the screen of ten by eight divisions with tick labels and marks beside it, and
/// below it a legend that says which trace is which. The window, picture files and the printer use
/// this one painter.
///
/// All lengths are pixels of the painter given; `pixelRatio` of them make one pixel of text and
/// line design.
class ScopePainter {
 public:
  explicit ScopePainter(const ZelScope& scope, PaintTime time = PaintTime::Frame)
      : scope_(scope), time_(time) {}

  /// Room that labels take around the screen, with one row of the legend, in the pixels of widgets.
  QSize Around() const { return around_ / ratio_; }

  /// The screen keeps so much height, in the pixels of widgets, beside the legend.
  void SetLeastHeight(int height) { leastHeight_ = height; }

  /// Area of the whole picture. Finds room for labels and marks; what is left is the screen's. The
  /// legend stands below it, with names alone where it would make it too low with the scales; there
  /// is none where these have no room either.
  void Layout(const QSize& size, double pixelRatio, const ScopeLabels& labels,
              const TraceLook& look = {});
  /// The part of the picture in which traces are drawn.
  const QRect& Plate() const { return plate_; }
  const ScreenMarks& Marks() const { return marks_; }
  /// A length of design in pixels.
  int Scaled(double length) const { return qRound(length * ratio_); }
  /// The channel, by index, whose entry of the legend is at that point of the picture.
  std::optional<std::size_t> LegendAt(const QPoint& point) const;

  /// Everything but the traces and their tags.
  void PaintBackground(QPainter& painter, const ScopeColours& colours) const;

  /// Traces through all points of the screen, with those kept for comparison behind them; calls of
  /// PaintNew go on from there.
  void PaintTraces(QPainter& painter, const ScopeColours& colours, const ScopeScreen& screen);

  /// Traces from the last point drawn to the last one of the screen, which has grown. Gives the
  /// area drawn in.
  QRect PaintNew(QPainter& painter, const ScopeColours& colours, const ScopeScreen& screen);

  /// The parts of the screen that traces have been painted on since PaintTraces.
  QRegion Touched() const { return touched_.Region().translated(plate_.topLeft()); }

  /// Where each trace that is painted ends, as heights on the screen, in channel order.
  std::vector<std::optional<int>> TraceEnds() const;
  /// The channel, by index, whose trace is painted within so many pixels of a point of the picture;
  /// of several the nearest.
  std::optional<std::size_t> TraceAt(const QPoint& point, double reach) const;

  /// Tags at the ends of the traces.
  void PaintTags(QPainter& painter, const ScopeColours& colours);

  /// Something to draw for PaintNew.
  bool HasNew(const ScopeScreen& screen) const { return drawn_ != screen.PointCount(); }

  /// PaintTraces would paint other lines than the ones painted.
  bool Differs(const ScopeScreen& screen);

 private:
  struct PaintedTrace {
    std::size_t Channel = 0;
    std::vector<TracePoint> Points;
    TraceTrail Trail;
  };

  void PlacePlate(int legendHeight);
  int LegendRow() const;
  int LegendHeight() const;
  bool LegendFitsBelow() const;
  void PlaceLegend(int width);
  void PaintGrid(QPainter& painter, const ScopeColours& colours) const;
  void PaintTicks(QPainter& painter, const ScopeColours& colours) const;
  void PaintAxis(QPainter& painter, const ScopeColours& colours) const;
  void PaintColumns(QPainter& painter, const ScopeColours& colours) const;
  void PaintLegend(QPainter& painter, const ScopeColours& colours) const;
  void PaintSample(QPainter& painter, const ScopeColours& colours, int colour,
                   const QRect& place) const;
  TracePen PenOf(const ScopeColours& colours, int colour) const;
  void PaintFrom(int first, QPainter& painter, const ScopeColours& colours,
                 const ScopeScreen& screen, TouchedArea& touched);
  void SetUpFor(QPainter& painter) const;
  void PaintKept(QPainter& painter, const ScopeColours& colours, const ScopeScreen& screen);
  std::vector<std::vector<TracePoint>> KeptPoints(const ScopeScreen& screen);
  std::size_t TracesToPaint() const { return traces_.size() * (scope_.Kept() ? 2 : 1); }
  void PlaceColumns(int first, const ScopeScreen& screen);
  void AppendPoints(std::vector<TracePoint>& points, std::size_t channel, int first,
                    const ScopeScreen& screen) const;

  const ZelScope& scope_;
  PaintTime time_;
  ScopeLabels labels_;
  double ratio_ = 1.0;
  QSize size_;
  QRect plate_;
  QSize around_;
  int leastHeight_ = 180;
  QFont textFont_;
  QFont numberFont_;
  QFont markFont_;
  TraceLook look_;
  ScreenMarks marks_;
  std::vector<QRect> legendPlaces_;
  int drawn_ = 0;  // points
  TouchedArea touched_;
  // Kept between calls, so that a frame allocates nothing.
  std::vector<PaintedTrace> traces_;
  std::vector<std::vector<TracePoint>> kept_;  // as painted, by displayed channel
  std::vector<int> x_;
  std::vector<TracePoint> points_;
};

}  // namespace torvane
