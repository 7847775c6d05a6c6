#include "ui/session/end_requests.h"

#include <fcntl.h>
#include <unistd.h>

#include <QEvent>
#include <QGuiApplication>
#include <csignal>

namespace torvane {

namespace {

constexpr int EndSignals[] = {SIGTERM, SIGHUP, SIGINT};

// A signal's handler knows nothing else, and may do no more than write.
volatile std::sig_atomic_t signalPipe = -1;

void WriteSignal(int signal) {
  const auto number = static_cast<char>(signal);
  [[maybe_unused]] const ssize_t written = write(signalPipe, &number, 1);
}

std::array<int, 2> OpenPipe() {
  std::array<int, 2> ends{-1, -1};
  [[maybe_unused]] const int opened = pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK);
  return ends;
}

}  // namespace

EndRequests::EndRequests() : pipe_(OpenPipe()), notifier_(pipe_[0], QSocketNotifier::Read) {
  signalPipe = pipe_[1];
  connect(&notifier_, &QSocketNotifier::activated, this, &EndRequests::ReadSignal);
  connect(qApp, &QGuiApplication::commitDataRequest, this, &EndRequests::KeepAsked);
  qApp->installEventFilter(this);
  for (const int signal : EndSignals) {
    struct sigaction present {};
    sigaction(signal, nullptr, &present);
    if (present.sa_handler == SIG_IGN) continue;
    struct sigaction action {};
    action.sa_handler = WriteSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    sigaction(signal, &action, nullptr);
  }
}

EndRequests::~EndRequests() {
  for (const int signal : EndSignals) {
    struct sigaction present {};
    sigaction(signal, nullptr, &present);
    if (present.sa_handler == WriteSignal) std::signal(signal, SIG_DFL);
  }
  for (const int end : pipe_) close(end);
}

void EndRequests::ReadSignal() {
  char number = 0;
  if (read(pipe_[0], &number, 1) != 1) return;
  signal_ = number;
  emit EndAsked();
}

// The session manager's word, and the program's own when its windows have been closed.
bool EndRequests::eventFilter(QObject* watched, QEvent* event) {
  if (watched == qApp && event->type() == QEvent::Quit) emit EndAsked();
  return QObject::eventFilter(watched, event);
}

}  // namespace torvane
