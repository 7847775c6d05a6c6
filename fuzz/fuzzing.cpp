#include "fuzzing.h"

#include <cstdio>
#include <cstdlib>

namespace torvane::fuzz {

void CountingSink::EndApplication() {
  std::abort();
}

CountingSink& Sink() {
  static CountingSink sink;
  return sink;
}

void Require(bool good, const std::string& what) {
  if (good) return;
  std::fprintf(stderr, "%s\n", what.c_str());
  std::abort();
}

std::string_view AsText(const unsigned char* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace torvane::fuzz
