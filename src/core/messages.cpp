#include "core/messages.h"

#include <utility>

namespace torvane {
namespace {

// One sink for all that runs in a thread: reports come from blocks that know neither window nor
// program.
constinit thread_local MessageSink* installedSink = nullptr;

void Show(MessageKind kind, const std::string& text) {
  if (installedSink) installedSink->Show(kind, text);
}

bool Ask(MessageKind kind, const std::string& text) {
  return installedSink && installedSink->Ask(kind, text);
}

}  // namespace

const char* MessageCaption(MessageKind kind) {
  switch (kind) {
    case MessageKind::Note:
      return "Note";
    case MessageKind::Warning:
      return "Warning";
    case MessageKind::Error:
      return "Error";
    case MessageKind::FatalError:
      return "Fatal Error";
    case MessageKind::Conversion:
      break;
  }
  return "Message Box";
}

MessageSink* InstallMessageSink(MessageSink* sink) {
  return std::exchange(installedSink, sink);
}

void Note(const std::string& text) {
  Show(MessageKind::Note, text);
}

void Warning(const std::string& text) {
  Show(MessageKind::Warning, text);
}

bool WarningQuestion(const std::string& text) {
  return Ask(MessageKind::Warning, text);
}

void Error(const std::string& text) {
  Show(MessageKind::Error, text);
}

bool ErrorQuestion(const std::string& text) {
  return Ask(MessageKind::Error, text);
}

void FatalError(const std::string& text) {
  Show(MessageKind::FatalError, text);
  if (installedSink) installedSink->EndApplication();
}

void ConversionError(const std::string& text) {
  Show(MessageKind::Conversion, text);
}

}  // namespace torvane
