#pragma once

#include <QFont>
#include <QPainter>
#include <QRect>
#include <functional>

#include "instruments/scope/scope.h"
#include "plot/scope_colours.h"
#include "plot/scope_labels.h"
#include "plot/trace_painter.h"

namespace torvane {

/// Paints a scope: the screen of ten by eight divisions, tick labels beside it, and below it a
/// legend that says which trace is which. The window, picture files and the printer use this one
/// painter.
///
/// All lengths are pixels of the painter given; `pixelRatio` of them make one pixel of text and
/// line design.
class ScopePainter {
 public:
  explicit ScopePainter(const ZelScope& scope, PaintTime time = PaintTime::Frame)
      : scope_(scope), time_(time) {}

  /// Area of the whole picture. Finds room for the labels; what is left is the screen's.
  void Layout(const QSize& size, double pixelRatio, const ScopeLabels& labels);
  /// The part of the picture in which traces are drawn.
  const QRect& Plate() const { return plate_; }

  /// Everything but the traces.
  void PaintBackground(QPainter& painter, const ScopeColours& colours) const;

  /// Traces through all points of the screen, with those kept for comparison behind them; calls of
  /// PaintNew go on from there.
  void PaintTraces(QPainter& painter, const ScopeScreen& screen);

  /// Traces from the last point drawn to the last one of the screen, which has grown. Gives the
  /// area drawn in.
  QRect PaintNew(QPainter& painter, const ScopeScreen& screen);

  /// The scope's cursors, as far as they are on.
  void PaintCursors(QPainter& painter, const ScopeColours& colours) const;

  /// Something to draw for PaintNew.
  bool HasNew(const ScopeScreen& screen) const { return drawn_ != screen.PointCount(); }

 private:
  void PlaceLegend(int width);
  void PaintGrid(QPainter& painter, const ScopeColours& colours) const;
  void PaintTicks(QPainter& painter, const ScopeColours& colours) const;
  void PaintLabels(QPainter& painter, const ScopeColours& colours) const;
  void PaintLegend(QPainter& painter, const ScopeColours& colours) const;
  void PaintKept(QPainter& painter, const ScopeScreen& screen);
  QRect PaintFrom(int first, QPainter& painter, const ScopeScreen& screen);
  /// Hands each displayed channel's points, from the first one on, to `paint` by points_.
  void PaintEach(int first, QPainter& painter, const ScopeScreen& screen,
                 const std::function<void(TracePainter& traces, std::size_t channel)>& paint);
  int Scaled(double length) const { return qRound(length * ratio_); }

  const ZelScope& scope_;
  PaintTime time_;
  ScopeLabels labels_;
  double ratio_ = 1.0;
  QSize size_;
  QRect plate_;
  QFont textFont_;
  QFont numberFont_;
  std::vector<QRect> legendPlaces_;
  int drawn_ = 0;                 // points
  std::vector<EdgeMarks> marks_;  // by channel
  // Kept between calls, so that a frame allocates nothing.
  std::vector<int> x_;
  std::vector<TracePoint> points_;
};

}  // namespace torvane
