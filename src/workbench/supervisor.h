#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "core/messages.h"

namespace torvane {

class ZelModel;

/// Looks after one run for as long as it lives.
class RunWatch {
 public:
  virtual ~RunWatch() = default;
  /// Called every few milliseconds of work with the simulated time, seconds; an exception ends the
  /// run there.
  virtual void CheckIn(double time) = 0;
};

/// Whom models are opened, set and run for: takes all that is reported meanwhile, answers
/// questions, and may end a run.
class Supervisor : public MessageSink {
 public:
  /// A run up to the simulated time `until`, seconds, begins.
  virtual std::unique_ptr<RunWatch> WatchRun(const ZelModel& model, double until) = 0;

  void Show(MessageKind kind, const std::string& text) final;
  bool Ask(MessageKind kind, const std::string& text) final;
  void EndApplication() override { ended_ = true; }

  /// Somebody wants all work to end, the run in progress first.
  virtual bool Interrupted() const { return false; }

  /// Takes a report under its label, "Warning" or a place in a file.
  virtual void Report(std::string_view label, std::string_view text) = 0;
  /// Takes lines as they stand, a part of the report before them.
  virtual void Print(std::string_view lines) = 0;

  /// What every question is answered with: OK, or Cancel unless the user asked for OK.
  void SetAnswerOk(bool answerOk) { answerOk_ = answerOk; }

  /// Changes settings whose setters report what they refuse; a report is wrong usage, whose reason
  /// has been reported.
  void ApplySettings(const std::function<void()>& apply);

  /// What reports are about from now on, a file's line say; it begins each. Empty for nothing.
  void SetPlace(const std::string& place) { place_ = place; }

  /// Reports and questions so far.
  int Reports() const { return reports_; }

  /// A fatal error was reported.
  bool Ended() const { return ended_; }

 private:
  std::string place_;
  int errors_ = 0;
  int reports_ = 0;
  bool ended_ = false;
  bool answerOk_ = false;
};

}  // namespace torvane
