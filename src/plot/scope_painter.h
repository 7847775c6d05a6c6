#pragma once

#include <QFont>
#include <QPainter>
#include <QPolygon>
#include <QRect>

#include "instruments/scope/scope.h"
#include "plot/scope_colours.h"
#include "plot/scope_labels.h"

namespace torvane {

/// Paints a scope: the screen of ten by eight divisions, tick labels beside it, and below it a
/// legend that says which trace is which. The window, picture files and the printer use this one
/// painter.
///
/// All lengths are pixels of the painter given; `pixelRatio` of them make one pixel of text and
/// line design.
class ScopePainter {
 public:
  explicit ScopePainter(ZelScope& scope) : scope_(scope) {}

  /// Area of the whole picture. Finds room for the labels and hands what is left for the screen
  /// to the scope, which computes its pixels for it.
  void Layout(const QSize& size, double pixelRatio, const ScopeLabels& labels);
  /// The part of the picture in which traces are drawn.
  const QRect& Plate() const { return plate_; }

  /// Everything but the traces.
  void PaintBackground(QPainter& painter, const ScopeColours& colours) const;

  /// Traces from the screen's first point to the last one captured; further calls of PaintNew go
  /// on from there. With `previousSweep` the points not yet overwritten by the present sweep are
  /// drawn too, as they were.
  void PaintTraces(QPainter& painter, bool previousSweep);

  /// Traces from the last point drawn to the last one captured. Gives the area drawn in, empty when
  /// there was nothing new.
  QRect PaintNew(QPainter& painter);

  /// Something to draw for PaintNew.
  bool HasNew() const { return scope_.FillIndex() >= 0 && lastDrawn_ != scope_.FillIndex(); }

 private:
  void PlaceLegend(int width);
  void PaintGrid(QPainter& painter, const ScopeColours& colours) const;
  void PaintTicks(QPainter& painter, const ScopeColours& colours) const;
  void PaintLabels(QPainter& painter, const ScopeColours& colours) const;
  void PaintLegend(QPainter& painter, const ScopeColours& colours) const;
  void BeginTraces(QPainter& painter) const;
  QRect PaintSegment(QPainter& painter, int from, int to);
  void PaintPreviousSweep(QPainter& painter);
  bool PlacePreviousSweep();
  QPoint PointAt(const ZelChannel& channel, int index) const;
  template <typename Paint>
  void ForEachTrace(QPainter& painter, Paint paint);
  int Scaled(double length) const { return qRound(length * ratio_); }

  ZelScope& scope_;
  ScopeLabels labels_;
  double ratio_ = 1.0;
  QSize size_;
  QRect plate_;
  QFont textFont_;
  QFont numberFont_;
  std::vector<QRect> legendPlaces_;
  int lastDrawn_ = -1;
  QPolygon line_;               // kept between calls, so that a frame allocates nothing
  std::vector<int> previousX_;  // of the points that the present sweep has not reached
};

}  // namespace torvane
