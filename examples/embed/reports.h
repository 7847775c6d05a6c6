#pragma once

#include <torvane/core/messages.h>

#include <iostream>
#include <string>

/// Takes what the engines report in this thread for as long as it lives, and prints it.
class Reports final : public torvane::MessageSink {
 public:
  Reports() : previous_(torvane::InstallMessageSink(this)) {}
  ~Reports() override { torvane::InstallMessageSink(previous_); }
  Reports(const Reports&) = delete;
  Reports& operator=(const Reports&) = delete;

  void Show(torvane::MessageKind kind, const std::string& text) override {
    std::cerr << torvane::MessageCaption(kind) << ": " << text << '\n';
  }
  /// Questions are answered with Cancel.
  bool Ask(torvane::MessageKind kind, const std::string& text) override {
    Show(kind, text);
    return false;
  }
  void EndApplication() override { std::cerr << "That cannot be gone on with.\n"; }

 private:
  torvane::MessageSink* previous_;
};
