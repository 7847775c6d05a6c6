#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QObject>

namespace torvane {

class ZelModel;

/// Runs a model from the message loop: one pass of at most 25 chunks whenever the loop has nothing
/// else to do. A pass is cut after a hundredth of a second, within a chunk too, so that the windows
/// go on answering at every time base. Stopped, it uses no processor.
class RunDriver : public QObject {
  Q_OBJECT

 public:
  explicit RunDriver(QObject* parent);

  /// The model must live until Stop, or until the run ends by itself.
  void Start(ZelModel& model);
  void Stop();
  bool Running() const { return running_; }
  /// Between Pause and Resume a run stands still; it may be started and stopped meanwhile.
  void Pause();
  void Resume();

 signals:
  /// While the model runs, thirty times a second. When the slots take long, as dense traces do,
  /// less often, down to ten times, so that the simulation keeps most of the processor.
  void Frame();
  /// The run ended by itself: an instrument asked for it, or an error did. Comes before the error
  /// is reported.
  void Ended();

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  void Pass();
  void End();
  void ShowFrame();

  QBasicTimer timer_;  // due at once, always
  QElapsedTimer sinceFrame_;
  qint64 frameInterval_;  // nanoseconds
  ZelModel* model_ = nullptr;
  bool running_ = false;
  bool paused_ = false;
};

}  // namespace torvane
