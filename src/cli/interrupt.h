#pragma once

#include <csignal>

namespace torvane::cli {

/// For as long as it lives, an interrupt (Ctrl-C) or a request to terminate is only noted, so that
/// the run in progress can end cleanly. A second one ends the program at once.
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
};

}  // namespace torvane::cli
