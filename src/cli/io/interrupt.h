#pragma once

#include <csignal>

namespace torvane::cli {

/// For as long as it lives, an interrupt (Ctrl-C), a request to terminate or the end of the
/// terminal is only noted, so that the run in progress can end cleanly. A second interrupt or
/// request ends the program at once.
class InterruptGuard {
 public:
  InterruptGuard();
  ~InterruptGuard();
  InterruptGuard(const InterruptGuard&) = delete;
  InterruptGuard& operator=(const InterruptGuard&) = delete;

  static bool Interrupted();

 private:
  struct sigaction oldInterrupt_;
  struct sigaction oldTerminate_;
  struct sigaction oldHangUp_;
};

}  // namespace torvane::cli
