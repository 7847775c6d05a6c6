#pragma once

#include <string>
#include <vector>

#include "core/messages.h"

namespace torvane::test {

/// Message sink that keeps what was reported, as "Caption: text", for as long as it lives.
class Recorder : public MessageSink {
 public:
  Recorder() : previous_(InstallMessageSink(this)) {}
  ~Recorder() override { InstallMessageSink(previous_); }

  void Show(MessageKind kind, const std::string& text) override { Add(kind, text); }
  bool Ask(MessageKind kind, const std::string& text) override {
    Add(kind, text);
    return Answer;
  }
  void EndApplication() override { Ended = true; }

  /// The reports since the last call.
  std::vector<std::string> Take() {
    std::vector<std::string> taken;
    taken.swap(messages_);
    return taken;
  }

  bool Answer = true;  ///< given to every question
  bool Ended = false;

 private:
  void Add(MessageKind kind, const std::string& text) {
    messages_.push_back(std::string(MessageCaption(kind)) + ": " + text);
  }

  MessageSink* previous_;
  std::vector<std::string> messages_;
};

/// For EXPECT_EQ(recorder.Take(), Messages{"Error: ..."}).
using Messages = std::vector<std::string>;

}  // namespace torvane::test
