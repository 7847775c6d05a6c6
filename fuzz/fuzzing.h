#pragma once

#include <string>
#include <string_view>

#include "core/messages.h"

namespace torvane::fuzz {

/// Counts reports and agrees to everything.
class CountingSink final : public MessageSink {
 public:
  void Show(MessageKind /*kind*/, const std::string& /*text*/) override { ++Reports; }
  bool Ask(MessageKind /*kind*/, const std::string& /*text*/) override { return true; }
  void EndApplication() override;

  int Reports = 0;
};

/// The sink of all reports of the fuzz target.
CountingSink& Sink();

/// Ends the program, which the fuzzer takes for a find, unless the condition holds.
void Require(bool good, const std::string& what);

/// The bytes that the fuzzer hands over.
std::string_view AsText(const unsigned char* data, std::size_t size);

}  // namespace torvane::fuzz
