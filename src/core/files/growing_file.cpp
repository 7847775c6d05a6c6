#include "core/files/growing_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "core/files/atomic_save.h"
#include "core/files/file_fault.h"
#include "core/files/input_file.h"

namespace torvane {
namespace {

// Not inherited by processes that are started, and gone with the one that has it.
bool LockWhole(int descriptor) {
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  return fcntl(descriptor, F_SETLK, &lock) == 0;
}

}  // namespace

std::string GrowingFile::NameFor(const std::string& path) {
  return FollowLinks(path).value_or(path) + ".part";
}

// Not through a link, and without waiting for what may never have a reader.
std::string GrowingFile::Open() {
  constexpr int flags = O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  file_.emplace(open(name_.c_str(), flags, NewFileMode));
  if (!file_->IsOpen() && errno == ELOOP) return name_ + " is a link; it is not followed";
  if (!file_->IsOpen() && errno == ENXIO) return name_ + " is no plain file";
  if (!file_->IsOpen()) return CannotOpen(name_, errno);
  struct stat status {};
  const bool plain = fstat(file_->Descriptor(), &status) == 0 && S_ISREG(status.st_mode);
  if (!plain) return name_ + " is no plain file";
  return LockWhole(file_->Descriptor()) ? "" : name_ + " is being written by another process";
}

std::size_t GrowingFile::Size() const {
  struct stat status {};
  return fstat(file_->Descriptor(), &status) == 0 ? static_cast<std::size_t>(status.st_size) : 0;
}

std::string GrowingFile::Read(std::size_t limit) const {
  std::string text;
  std::array<char, InputFile::PieceSize> piece{};
  while (text.size() < limit) {
    const ssize_t count =
        pread(file_->Descriptor(), piece.data(), std::min(piece.size(), limit - text.size()),
              static_cast<off_t>(text.size()));
    if (count <= 0) break;
    text.append(piece.data(), static_cast<std::size_t>(count));
  }
  return text;
}

bool GrowingFile::Clear() {
  return ftruncate(file_->Descriptor(), 0) == 0;
}

bool GrowingFile::Write(std::string_view lines) {
  const std::size_t before = Size();
  if (file_->Write(lines)) return true;
  const int fault = errno;
  const std::string_view written = lines.substr(0, Size() - before);
  const std::size_t whole = written.rfind('\n') + 1;
  if (ftruncate(file_->Descriptor(), static_cast<off_t>(before + whole)) == 0) errno = fault;
  return false;
}

bool GrowingFile::Flush() {
  return file_->Flush();
}

std::string GrowingFile::MoveInPlace() {
  return PutInPlace(*file_, name_, path_);
}

void GrowingFile::Remove() {
  unlink(name_.c_str());
  file_->Close();
}

}  // namespace torvane
