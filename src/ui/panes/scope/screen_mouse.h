#pragma once

#include <QPoint>
#include <cstddef>
#include <optional>

#include "plot/scope/scope_painter.h"

namespace torvane {

/// What the mouse does on a scope's screen, in pixels of its picture: drags the marks of zeros and
/// of the trigger and the cursors, chooses traces, and turns scales with its wheel. Whatever it
/// changes goes to the scope's setters.
class ScreenMouse {
 public:
  /// All must outlive it.
  ScreenMouse(ZelScope& scope, const ScopePainter& painter) : scope_(scope), painter_(painter) {}

  /// Takes hold of what can be dragged at that point: a mark, else, where there are cursors, the
  /// nearer one, which jumps there. False when there is nothing.
  bool Press(const QPoint& at);
  void MoveTo(const QPoint& at);
  void Release() { held_ = Held::Nothing; }
  bool Holds() const { return held_ != Held::Nothing; }

  /// The channel, by index, that a click at that point chooses.
  std::optional<std::size_t> ChoiceAt(const QPoint& at) const;

  /// The pointer that says what a press would take hold of.
  Qt::CursorShape ShapeAt(const QPoint& at) const;
  /// What can be dragged there, in words; empty when nothing can.
  QString HintAt(const QPoint& at) const;

  /// So many steps of the wheel: up spreads the trace, or the time.
  void TurnScale(ZelChannel& channel, int steps);
  void TurnTimeBase(int steps);

 private:
  enum class Held { Nothing, Cursor, Zero, Level, Position };

  bool HoldMark(const QPoint& at);
  bool CursorsMove() const { return scope_.Cursors().Mode > 0 && !scope_.XYMode(); }
  bool NearCursor(const QPoint& at) const;
  int PlateX(const QPoint& at) const;
  double Risen(const QPoint& at) const;
  void DragZero(const QPoint& at);
  void DragLevel(const QPoint& at);

  ZelScope& scope_;
  const ScopePainter& painter_;
  Held held_ = Held::Nothing;
  std::size_t index_ = 0;  // of the cursor, or of the zero's channel
  QPoint from_;            // where the mark was taken
  double start_ = 0.0;     // what it stood for then
  bool moved_ = false;
};

}  // namespace torvane
