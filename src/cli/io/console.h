#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "core/messages.h"

namespace torvane::cli {

/// Standard error: reports, one line each, and the progress of a long run. It is the sink of all
/// reports for as long as it lives.
class Console final : public MessageSink {
 public:
  Console();
  ~Console() override;
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  void Show(MessageKind kind, const std::string& text) override;
  bool Ask(MessageKind kind, const std::string& text) override;
  void EndApplication() override { ended_ = true; }

  /// Prints label + ": " + text, line ends turned into blanks.
  void Report(std::string_view label, std::string_view text);

  /// Prints lines as they stand, a part of the report before them.
  void Print(std::string_view lines);

  /// What every question is answered with: OK, or Cancel unless the user asked for OK.
  void SetAnswerOk(bool answerOk) { answerOk_ = answerOk; }

  /// Changes settings whose setters report what they refuse; a report is wrong usage.
  void ApplySettings(const std::function<void()>& apply);

  /// What reports are about from now on, a file's line say; it begins each. Empty for nothing.
  void SetPlace(const std::string& place) { place_ = place; }

  /// Reports and questions so far.
  int Reports() const { return reports_; }

  /// A fatal error was reported.
  bool Ended() const { return ended_; }

  /// Whether somebody can watch the progress: a terminal that the result does not go to.
  static bool CanShowProgress(bool resultOnStandardOutput);
  /// Rewrites the progress line; the next report, or an empty text, wipes it.
  void ShowProgress(const std::string& text);

 private:
  MessageSink* previous_;
  std::string place_;
  int errors_ = 0;
  int reports_ = 0;
  bool ended_ = false;
  bool answerOk_ = false;
  bool progressShown_ = false;
};

}  // namespace torvane::cli
