#include "cli/io/console.h"

#include <unistd.h>

#include <cstdio>

#include "cli/command_error.h"

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

void Console::Print(std::string_view lines) {
  std::fputs((std::string(lines) + "\n").c_str(), stderr);
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
