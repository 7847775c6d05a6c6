#pragma once

#include <QPointF>

#include "plot/response/plane_painter.h"

namespace torvane {

/// What the mouse does to a Nyquist or Nichols plot, in pixels of its picture: it moves the plot,
/// and its wheel zooms about the pointer. Whatever it changes goes to the analyser's setters.
class PlaneMouse {
 public:
  /// Both must outlive it.
  PlaneMouse(FrequencyAnalyser& analyser, const PlanePainter& painter)
      : analyser_(analyser), painter_(painter) {}

  void Press(const QPointF& at);
  void MoveTo(const QPointF& at);
  void Release() { held_ = false; }
  bool Holds() const { return held_; }

  /// So many steps of the wheel: up shows less of the plane, larger.
  void Turn(const QPointF& at, int steps);
  /// The whole of it, as at first.
  void ShowAll();

 private:
  bool IsNyquist() const { return analyser_.View().Plot == ResponsePlot::Nyquist; }
  void Show(const QPointF& scale, const QPointF& centre);

  FrequencyAnalyser& analyser_;
  const PlanePainter& painter_;
  bool held_ = false;
  bool moved_ = false;
  QPointF from_;    // where the mouse took hold
  QPointF centre_;  // of the plot then
};

}  // namespace torvane
