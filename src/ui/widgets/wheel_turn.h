#pragma once

#include <QObject>
#include <QTimer>

class QWheelEvent;

namespace torvane {

/// A turn of the wheel, which is one change until the wheel rests.
class WheelTurn : public QObject {
  Q_OBJECT

 public:
  explicit WheelTurn(QObject* parent);

  /// The whole steps that the event completes, counted upwards; wheels may turn by less.
  int StepsOf(const QWheelEvent& event);
  /// The turn is over, as something else begins.
  void End();

 signals:
  void Begun();
  void Ended();

 private:
  QTimer rest_;
  int turned_ = 0;  // of the next step, in eighths of a degree
};

}  // namespace torvane
