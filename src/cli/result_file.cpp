#include "cli/result_file.h"

#include <cerrno>
#include <system_error>

#include "cli/command_error.h"

namespace torvane::cli {
namespace {

constexpr std::size_t PieceSize = 65536;
constexpr std::chrono::milliseconds LongestDelay(500);

std::string Reason() {
  return std::generic_category().message(errno);
}

}  // namespace

ResultFile::ResultFile(const std::string& path)
    : name_(path.empty() ? "standard output" : "\"" + path + "\""),
      file_(path.empty() ? stdout : std::fopen(path.c_str(), "wb")),
      passedOn_(std::chrono::steady_clock::now()) {
  if (!file_) throw FileError("cannot write " + name_ + ": " + Reason());
}

ResultFile::~ResultFile() {
  if (!file_) return;
  PassOn();
  if (!IsStandardOutput()) std::fclose(file_);
}

void ResultFile::Write(std::string_view lines) {
  pending_ += lines;
  if (pending_.size() < PieceSize && std::chrono::steady_clock::now() - passedOn_ < LongestDelay) {
    return;
  }
  if (!PassOn()) Fail();
}

void ResultFile::Close() {
  if (!PassOn()) Fail();
  std::FILE* const file = file_;
  file_ = nullptr;
  if (file != stdout && std::fclose(file) != 0) Fail();
}

bool ResultFile::PassOn() {
  const std::string piece = std::move(pending_);
  pending_.clear();
  passedOn_ = std::chrono::steady_clock::now();
  return std::fwrite(piece.data(), 1, piece.size(), file_) == piece.size() &&
         std::fflush(file_) == 0;
}

void ResultFile::Fail() const {
  throw FileError("cannot write " + name_ + ": " + Reason());
}

}  // namespace torvane::cli
