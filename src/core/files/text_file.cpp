#include "core/files/text_file.h"

#include <array>
#include <cerrno>
#include <string_view>

#include "core/files/file_fault.h"

namespace torvane {
namespace {

std::string TooLarge(const std::string& path, std::size_t limit) {
  return path + " is larger than " + std::to_string(limit >> 20U) + " MiB";
}

}  // namespace

std::string ReadTextFile(const std::string& path, std::size_t limit, std::string& text,
                         int patience) {
  InputFile file(path, patience);
  if (!file.IsOpen()) return CannotOpen(path, errno);
  if (file.Size() > limit) return TooLarge(path, limit);
  text.clear();
  // Growing by doubling would take twice the memory; what is not written to takes none.
  text.reserve(file.Size() > 0 ? file.Size() : limit);
  std::array<char, InputFile::PieceSize> buffer{};
  for (;;) {
    const ssize_t count = file.Read(buffer.data(), buffer.size());
    if (count == 0) return {};
    if (file.WasSilent()) return "Nothing comes from " + path;
    if (count < 0) return "Cannot read " + path + ": " + SystemReason(errno);
    const std::string_view piece(buffer.data(), static_cast<std::size_t>(count));
    if (text.size() + piece.size() > limit) return TooLarge(path, limit);
    // UTF-16, say, or a spreadsheet's own format.
    if (piece.find('\0') != std::string_view::npos) return path + " is no plain text";
    text += piece;
  }
}

}  // namespace torvane
