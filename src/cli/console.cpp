#include "cli/console.h"

#include <unistd.h>

#include <cstdio>

#include "cli/command_error.h"

namespace torvane::cli {
namespace {

std::string OneLine(std::string_view text) {
  std::string line;
  for (const char c : text) {
    if (c != '\r' && c != '\n') {
      line += c;
    } else if (!line.empty() && line.back() != ' ') {
      line += ' ';
    }
  }
  return line;
}

const char* Label(MessageKind kind) {
  switch (kind) {
    case MessageKind::Note:
      return "Note";
    case MessageKind::Warning:
      return "Warning";
    default:
      return "Error";
  }
}

}  // namespace

Console::Console() : previous_(InstallMessageSink(this)) {}

Console::~Console() {
  ShowProgress("");
  InstallMessageSink(previous_);
}

void Console::Show(MessageKind kind, const std::string& text) {
  ++reports_;
  if (kind != MessageKind::Note && kind != MessageKind::Warning) ++errors_;
  Report(Label(kind), place_ + text);
}

bool Console::Ask(MessageKind kind, const std::string& text) {
  ++reports_;
  Report(Label(kind), place_ + text + (answerOk_ ? " (OK)" : " (Cancel; --yes answers OK)"));
  return answerOk_;
}

void Console::Report(std::string_view label, std::string_view text) {
  ShowProgress("");
  const std::string line = std::string(label) + ": " + OneLine(text) + "\n";
  std::fputs(line.c_str(), stderr);
}

void Console::ApplySettings(const std::function<void()>& apply) {
  const int before = errors_;
  apply();
  if (errors_ > before) throw UsageError("");
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
