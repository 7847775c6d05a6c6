#include "core/files/seal.h"

#include <cstdint>

namespace torvane {
namespace {

constexpr std::string_view SealedKeyword = "Sealed,";

// FNV-1a, 64 bits: against accidents, not against forgers.
std::uint64_t Checksum(std::string_view text) {
  std::uint64_t sum = 14695981039346656037U;
  for (const char c : text) {
    sum = (sum ^ static_cast<unsigned char>(c)) * 1099511628211U;
  }
  return sum;
}

std::string SealOf(std::string_view text) {
  return std::string(SealedKeyword) + std::to_string(text.size()) + "," +
         std::to_string(Checksum(text)) + "\r\n";
}

}  // namespace

std::string Sealed(std::string text) {
  return text += SealOf(text);
}

std::string ChecksumText(std::string_view text) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string sum = "x";
  const std::uint64_t number = Checksum(text);
  for (int shift = 60; shift >= 0; shift -= 4) sum += digits[(number >> shift) & 15U];
  return sum;
}

std::optional<std::string> Unsealed(std::string_view sealed) {
  const std::size_t line = sealed.rfind(SealedKeyword);
  if (line == std::string_view::npos || line == 0) return {};
  const std::string_view text = sealed.substr(0, line);
  if (sealed.substr(line) != SealOf(text)) return {};
  return std::string(text);
}

}  // namespace torvane
