#pragma once

#include "core/messages.h"

namespace torvane {

/// For as long as it lives, reports go nowhere and the answer to every question is Cancel.
class Quiet final : public MessageSink {
 public:
  Quiet() : previous_(InstallMessageSink(this)) {}
  ~Quiet() override { InstallMessageSink(previous_); }
  Quiet(const Quiet&) = delete;
  Quiet& operator=(const Quiet&) = delete;

  void Show(MessageKind /*kind*/, const std::string& /*text*/) override {}
  bool Ask(MessageKind /*kind*/, const std::string& /*text*/) override { return false; }
  void EndApplication() override {}

 private:
  MessageSink* previous_;
};

}  // namespace torvane
