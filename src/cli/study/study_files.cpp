#include "cli/study/study_files.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "cli/command_error.h"
#include "core/files/file_fault.h"
#include "core/files/input_file.h"

namespace torvane::cli {
namespace {

constexpr std::size_t PieceSize = 65536;
constexpr mode_t NewFileMode = 0666;  // less what the user's mask takes away

// Not inherited by the processes that a study starts, and gone with the one that has it.
bool LockWhole(int descriptor) {
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  return fcntl(descriptor, F_SETLK, &lock) == 0;
}

std::string ReadAll(int descriptor) {
  std::string text;
  std::array<char, PieceSize> piece{};
  while (const ssize_t count = read(descriptor, piece.data(), piece.size())) {
    if (count < 0) break;
    text.append(piece.data(), static_cast<std::size_t>(count));
  }
  return text;
}

std::vector<std::string> WholeLines(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t from = 0, end = 0; (end = text.find('\n', from)) != std::string::npos;) {
    lines.push_back(text.substr(from, end + 1 - from));
    from = end + 1;
  }
  return lines;
}

}  // namespace

std::string ReadStudyFile(const std::string& path) {
  InputFile file(path, InputFile::WaitForEver);
  if (!file.IsOpen()) throw FileError(CannotOpen(path, errno));
  std::string text;
  std::array<char, PieceSize> piece{};
  for (;;) {
    const ssize_t count = file.Read(piece.data(), piece.size());
    if (count < 0) throw FileError("Cannot read " + path + ": " + SystemReason(errno));
    if (count == 0) break;
    text.append(piece.data(), static_cast<std::size_t>(count));
  }
  // UTF-16, say, or a spreadsheet's own format.
  if (text.find('\0') != std::string::npos) throw UsageError(path + " is no plain text");
  return text;
}

PartFile::PartFile(const std::string& out, const std::string& identity)
    : path_(out + ".part"),
      file_(open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, NewFileMode)),
      identity_(identity) {
  if (!file_.IsOpen()) throw FileError(CannotOpen(path_, errno));
  if (!LockWhole(file_.Descriptor())) {
    throw FileError(path_ + " is being written by another process");
  }
  const std::string text = ReadAll(file_.Descriptor());
  // New, or cut off before its first line was whole.
  if (text.size() < identity_.size() && identity_.starts_with(text)) {
    CutTo(0);
    Append(identity_);
    return;
  }
  rows_ = WholeLines(text);
  if (rows_.empty() || rows_.front() != identity_) {
    throw FileError(path_ +
                    " has rows of another study; finish that one, remove the file or choose "
                    "another --out");
  }
  rows_.erase(rows_.begin());
}

void PartFile::KeepRows(std::size_t count) {
  rows_.resize(count);
  std::size_t length = identity_.size();
  for (const std::string& row : rows_) length += row.size();
  CutTo(static_cast<off_t>(length));
}

void PartFile::CutTo(off_t length) {
  if (ftruncate(file_.Descriptor(), length) != 0 ||
      lseek(file_.Descriptor(), 0, SEEK_END) != length) {
    throw FileError(CannotWrite(path_, errno));
  }
}

void PartFile::Append(const std::string& row) {
  if (!file_.Write(row)) throw FileError(CannotWrite(path_, errno));
}

void PartFile::Remove() {
  unlink(path_.c_str());
  file_.Close();
}

}  // namespace torvane::cli
