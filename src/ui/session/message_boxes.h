#pragma once

#include "core/messages.h"

namespace torvane {

/// The desktop's message sink: modal boxes over the main window. The sink of all reports for as
/// long as it lives.
class MessageBoxes final : public MessageSink {
 public:
  MessageBoxes();
  ~MessageBoxes() override;
  MessageBoxes(const MessageBoxes&) = delete;
  MessageBoxes& operator=(const MessageBoxes&) = delete;

  void Show(MessageKind kind, const std::string& text) override;
  bool Ask(MessageKind kind, const std::string& text) override;
  /// Ends the event loop when it next gets control. No window is asked whether it may close.
  void EndApplication() override;

 private:
  MessageSink* previous_;
};

}  // namespace torvane
