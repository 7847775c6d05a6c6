#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <array>

namespace torvane {

/// What the system says when it wants the program to end: a signal (SIGTERM, SIGHUP, SIGINT), or
/// the session manager. One object for the program; signals that are ignored at the start stay so.
class EndRequests : public QObject {
  Q_OBJECT

 public:
  EndRequests();
  ~EndRequests() override;

  /// The signal that came, 0 for none. A second one ends the program at once.
  int Signal() const { return signal_; }

 signals:
  /// What is unsaved is to be kept: the user's session may end soon.
  void KeepAsked();
  /// The program is to end, and nobody is there to answer a question.
  void EndAsked();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void ReadSignal();

  std::array<int, 2> pipe_;
  QSocketNotifier notifier_;
  int signal_ = 0;
};

}  // namespace torvane
