#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QObject>
#include <array>
#include <limits>

namespace torvane {

class ZelModel;

/// Runs a model from the message loop: one pass of at most 25 chunks whenever the loop has nothing
/// else to do, or as often as a slower pace needs. A pass is cut after a hundredth of a second,
/// within a chunk too, so that the windows go on answering at every time base. Stopped, it uses no
/// processor.
class RunDriver : public QObject {
  Q_OBJECT

 public:
  /// Pace of a model that runs as fast as the processor allows.
  static constexpr double Unlimited = std::numeric_limits<double>::infinity();

  explicit RunDriver(QObject* parent);

  /// Simulated time per real time; a running model goes on at the new pace. It is how far passes
  /// go that keeps the pace, what they simulate is the same at any. In between the program sleeps.
  /// A model that cannot keep up runs as fast as it can and does not catch up later.
  void SetPace(double pace);

  /// The model must live until Leave.
  void Start(ZelModel& model);
  void Stop();
  /// Stops, and forgets the model.
  void Leave();
  bool Running() const { return running_; }
  /// Between Pause and Resume a run stands still; it may be started and stopped meanwhile.
  void Pause();
  void Resume();

 signals:
  /// While the model runs, thirty times a second. When a frame takes long to paint, as dense traces
  /// do, less often, down to fifteen times, so that the simulation keeps most of the processor.
  void Frame();
  /// The run ended by itself: an instrument asked for it, or an error did. Comes before the error
  /// is reported.
  void Ended();

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  void Wake();
  void StartTimers(int interval);
  void StopTimers();
  void BeginTurn(qint64 now);
  double DueTime();
  void Pass(qint64 start);
  void SleepUntilNext(int interval);
  void End();

  // Due at once, unless the model is ahead of its pace. A turn of the message loop, in which it
  // asks the system for the user's input, takes as long as a short pass; of several timers that are
  // due the loop delivers one after the other in a turn.
  std::array<QBasicTimer, 8> timers_;
  int interval_ = 0;  // milliseconds
  double pace_ = Unlimited;
  double pacedFrom_ = 0.0;  // the simulated time that was due at the start of sincePaced_
  QElapsedTimer sincePaced_;
  // Nanoseconds.
  QElapsedTimer clock_;
  qint64 frameStart_ = 0;
  qint64 frameInterval_;
  qint64 turnStart_ = 0;
  bool frameShown_ = false;  // and its cost not yet known
  bool turnOver_ = false;
  ZelModel* model_ = nullptr;
  bool running_ = false;
  bool paused_ = false;
};

}  // namespace torvane
