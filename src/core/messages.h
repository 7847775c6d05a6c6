#pragma once

#include <string>

namespace torvane {

/// What a report is; it decides the caption of the box that shows it.
enum class MessageKind { Note, Warning, Error, FatalError, Conversion };

/// Caption of the box: "Note", "Warning", "Error", "Fatal Error" or "Message Box".
const char* MessageCaption(MessageKind kind);

/// Where reports go: message boxes on the desktop, standard error on the command line, a recorder
/// in tests.
class MessageSink {
 public:
  virtual ~MessageSink() = default;

  /// Shows a report that only needs to be acknowledged.
  virtual void Show(MessageKind kind, const std::string& text) = 0;

  /// Asks an OK/Cancel question; true for OK.
  virtual bool Ask(MessageKind kind, const std::string& text) = 0;

  /// Called after a fatal error was shown: the application is to end when control returns to it.
  virtual void EndApplication() = 0;
};

/// Installs the sink of all reports of this thread and returns the one before. Without a sink
/// reports are dropped and questions are answered with Cancel.
MessageSink* InstallMessageSink(MessageSink* sink);

/// A report under the caption of its kind.
void Note(const std::string& text);
/// As Note.
void Warning(const std::string& text);
/// As Note.
void Error(const std::string& text);

/// A question under the caption of its kind; true for OK.
bool WarningQuestion(const std::string& text);
/// As WarningQuestion.
bool ErrorQuestion(const std::string& text);

/// Shows the report and tells the application to end; returns to its caller all the same.
void FatalError(const std::string& text);

/// Shows a failed text-to-number conversion, in the box captioned "Message Box".
void ConversionError(const std::string& text);

}  // namespace torvane
