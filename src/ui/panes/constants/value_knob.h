#pragma once

#include <QObject>
#include <QPoint>
#include <QTableWidget>
#include <QTimer>

#include "core/bench.h"

class QMouseEvent;
class QWheelEvent;

namespace torvane {

/// Turns the selected value of a table of constants like a knob: by the wheel over it, or by a drag
/// that begins on it, upwards or to the right for more; finely with Shift. A turn of the wheel and
/// a drag are one change each. A value that is not selected stays as it is.
class ValueKnob : public QObject {
 public:
  /// Row n of the table is the bench's n-th constant. Belongs to the table.
  ValueKnob(QTableWidget& table, int valueColumn, ZelBenchTop& bench);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool IsOnSelected(const QPoint& place) const;
  bool TurnWheel(const QWheelEvent& wheel);
  bool Press(const QMouseEvent& mouse);
  bool Move(const QMouseEvent& mouse);
  bool Release(const QMouseEvent& mouse);
  /// Whether a drag was under way.
  bool EndDrag();
  void Turn(int amount, int perStep, bool fine);

  QTableWidget& table_;
  int valueColumn_;
  ZelBenchTop& bench_;
  QTimer turnEnd_;         // active while the wheel turns a value
  bool pressed_ = false;   // on the selected value
  bool dragging_ = false;  // and it has been turned since
  QPoint dragged_;         // up to here
  int turned_ = 0;         // what is no whole step yet, in eighths of a degree or pixels
};

}  // namespace torvane
