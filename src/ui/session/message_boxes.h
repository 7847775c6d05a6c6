#pragma once

#include "core/messages.h"

namespace torvane {

/// The desktop's message sink: modal boxes over the main window. The sink of all reports for as
/// long as it lives. A report's box opens when the call that reports is over (BoxQueue); a question
/// is asked in the call, after all reports so far have been read. Whoever asks must be able to bear
/// a message loop there.
class MessageBoxes final : public MessageSink {
 public:
  MessageBoxes();
  ~MessageBoxes() override;
  MessageBoxes(const MessageBoxes&) = delete;
  MessageBoxes& operator=(const MessageBoxes&) = delete;

  void Show(MessageKind kind, const std::string& text) override;
  bool Ask(MessageKind kind, const std::string& text) override;
  /// Ends the event loop when the reports so far have been read. No window is asked whether it may
  /// close.
  void EndApplication() override;

 private:
  MessageSink* previous_;
};

}  // namespace torvane
