#include "cli/io/interrupt.h"

namespace torvane::cli {
namespace {

// A signal handler may touch nothing else.
volatile std::sig_atomic_t interrupted = 0;

extern "C" void NoteInterrupt(int) {
  interrupted = 1;
}

}  // namespace

InterruptGuard::InterruptGuard() : oldInterrupt_{}, oldTerminate_{}, oldHangUp_{} {
  interrupted = 0;
  struct sigaction action {};
  action.sa_handler = NoteInterrupt;
  action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
  sigaction(SIGINT, &action, &oldInterrupt_);
  sigaction(SIGTERM, &action, &oldTerminate_);
  // A terminal that goes may say so twice, as its kernel and as its shell.
  action.sa_flags = SA_RESTART;
  sigaction(SIGHUP, &action, &oldHangUp_);
}

InterruptGuard::~InterruptGuard() {
  sigaction(SIGINT, &oldInterrupt_, nullptr);
  sigaction(SIGTERM, &oldTerminate_, nullptr);
  sigaction(SIGHUP, &oldHangUp_, nullptr);
}

bool InterruptGuard::Interrupted() {
  return interrupted != 0;
}

}  // namespace torvane::cli
