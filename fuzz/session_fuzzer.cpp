#include "core/files/seal.h"
#include "fuzzing.h"

// Feeds the seal of a kept session. What it lets through is what was sealed, byte for byte: nothing
// that is cut short or changed is taken for a session.

namespace {

using namespace torvane;
using fuzz::Require;

// An input may hold a seal of its own.
void RequireSealed(const std::string& text) {
  const auto unsealed = Unsealed(text);
  Require(!unsealed || Sealed(*unsealed) == text, "taken for whole:\n" + text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string text(fuzz::AsText(data, size));
  RequireSealed(text);
  if (text.empty()) return 0;
  std::string sealed = Sealed(text);
  Require(Unsealed(sealed) == text, "not taken for whole:\n" + sealed);
  // One damage: where and which is in the input.
  const std::size_t position = (data[0] * std::size_t{256} + data[size - 1]) % sealed.size();
  RequireSealed(sealed.substr(0, position));
  sealed[position] = static_cast<char>(sealed[position] ^ (1 + data[size / 2] % 255));
  Require(!Unsealed(sealed), "taken for whole when changed:\n" + sealed);
  return 0;
}
