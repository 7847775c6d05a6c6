#include "cli/io/console.h"

#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>

#include "cli/io/interrupt.h"
#include "core/text.h"
#include "workbench/work_fault.h"

namespace torvane::cli {
namespace {

// What a file or an option says may be in a report: it must not reach the terminal as a command.
std::string Escaped(char c) {
  constexpr std::string_view digits = "0123456789abcdef";
  const auto code = static_cast<unsigned char>(c);
  return {'\\', 'x', digits[code / 16U], digits[code % 16U]};
}

// The codes of ASCII, and in UTF-8 those from 80 to 9f, of which one begins commands too.
bool IsControl(std::string_view text, std::size_t i) {
  const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
  const bool afterLead = i > 0 && byte(i - 1) == 0xc2;
  return byte(i) < 0x20 || byte(i) == 0x7f || (afterLead && byte(i) >= 0x80 && byte(i) < 0xa0);
}

// Line ends become blanks, other control characters are shown by their codes.
std::string OneLine(std::string_view text) {
  std::string line;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '\r' || c == '\n') {
      if (!line.empty() && line.back() != ' ') line += ' ';
    } else if (IsControl(text, i)) {
      line += Escaped(c);
    } else {
      line += c;
    }
  }
  return line;
}

constexpr std::chrono::milliseconds ProgressPeriod(200);

/// Ends a run that is interrupted, and shows how far it is.
class ConsoleWatch final : public RunWatch {
 public:
  ConsoleWatch(Console& console, double until, bool showsProgress)
      : console_(console),
        until_(until),
        showsProgress_(showsProgress),
        // Short runs come and go without a progress line.
        nextProgress_(std::chrono::steady_clock::now() + 2 * ProgressPeriod) {}
  ~ConsoleWatch() override { console_.ShowProgress(""); }
  ConsoleWatch(const ConsoleWatch&) = delete;
  ConsoleWatch& operator=(const ConsoleWatch&) = delete;

  void CheckIn(double time) override {
    if (InterruptGuard::Interrupted()) {
      throw StoppedError("interrupted at " + FormatShortest(time) + " s");
    }
    if (console_.Ended()) throw StoppedError("stopped at " + FormatShortest(time) + " s");
    if (showsProgress_) ShowProgress(time);
  }

 private:
  void ShowProgress(double time) {
    const auto now = std::chrono::steady_clock::now();
    if (now < nextProgress_) return;
    nextProgress_ = now + ProgressPeriod;
    const double percent = std::floor(time / until_ * 1000.0) / 10.0;
    console_.ShowProgress(FormatGeneral(percent, 4, 2) + " % (" + FormatGeneral(time, 6, 2) +
                          " of " + FormatGeneral(until_, 6, 2) + " s)");
  }

  Console& console_;
  double until_;
  bool showsProgress_;
  InterruptGuard guard_;
  std::chrono::steady_clock::time_point nextProgress_;
};

}  // namespace

Console::Console() : previous_(InstallMessageSink(this)) {}

Console::~Console() {
  ShowProgress("");
  InstallMessageSink(previous_);
}

std::unique_ptr<RunWatch> Console::WatchRun(const ZelModel& /*model*/, double until) {
  return std::make_unique<ConsoleWatch>(*this, until, showsRuns_);
}

bool Console::Interrupted() const {
  return InterruptGuard::Interrupted();
}

void Console::Report(std::string_view label, std::string_view text) {
  ShowProgress("");
  const std::string line = std::string(label) + ": " + OneLine(text) + "\n";
  std::fputs(line.c_str(), stderr);
}

void Console::Print(std::string_view lines) {
  std::fputs((std::string(lines) + "\n").c_str(), stderr);
}

bool Console::CanShowProgress(bool resultOnStandardOutput) {
  return isatty(STDERR_FILENO) && !(resultOnStandardOutput && isatty(STDOUT_FILENO));
}

void Console::ShowProgress(const std::string& text) {
  if (text.empty() && !progressShown_) return;
  // Back to the line's start, the text, and the rest of the line wiped.
  std::fputs(("\r" + text + "\x1b[K").c_str(), stderr);
  std::fflush(stderr);
  progressShown_ = !text.empty();
}

}  // namespace torvane::cli
