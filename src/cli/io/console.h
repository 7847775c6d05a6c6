#pragma once

#include <string>
#include <string_view>

#include "workbench/supervisor.h"

namespace torvane::cli {

/// Standard error: reports, one line each, and the progress of a long run. It is the sink of all
/// reports for as long as it lives. An interrupt ends the run that it watches.
class Console final : public Supervisor {
 public:
  Console();
  ~Console() override;
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  std::unique_ptr<RunWatch> WatchRun(const ZelModel& model, double until) override;

  bool Interrupted() const override;

  /// Prints label + ": " + text, line ends turned into blanks.
  void Report(std::string_view label, std::string_view text) override;
  void Print(std::string_view lines) override;

  /// Whether somebody can watch the progress: a terminal that the result does not go to.
  static bool CanShowProgress(bool resultOnStandardOutput);
  /// Runs are to show how far they are, where somebody can watch it.
  void ShowRuns(bool resultOnStandardOutput = false) {
    showsRuns_ = CanShowProgress(resultOnStandardOutput);
  }
  /// Rewrites the progress line; the next report, or an empty text, wipes it.
  void ShowProgress(const std::string& text);

 private:
  MessageSink* previous_;
  bool showsRuns_ = false;
  bool progressShown_ = false;
};

}  // namespace torvane::cli
