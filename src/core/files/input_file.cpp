#include "core/files/input_file.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace torvane {

// Opened without waiting: a pipe may never have a writer. Reading waits.
InputFile::InputFile(const std::string& path, int patience)
    : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)), patience_(patience) {
  if (!IsOpen()) return;
  struct stat status {};
  const bool known = fstat(descriptor_, &status) == 0;
  if (!known || S_ISDIR(status.st_mode)) {
    const int fault = known ? EISDIR : errno;
    close(descriptor_);
    descriptor_ = -1;
    errno = fault;
    return;
  }
  plain_ = S_ISREG(status.st_mode);
  if (plain_) size_ = static_cast<std::size_t>(status.st_size);
}

InputFile::~InputFile() {
  if (IsOpen()) close(descriptor_);
}

ssize_t InputFile::Read(char* buffer, std::size_t size) {
  for (;;) {
    if (!plain_ && !WaitForData()) return -1;
    const ssize_t count = read(descriptor_, buffer, size);
    if (count >= 0 || (errno != EINTR && errno != EAGAIN)) return count;
  }
}

// Also true at the end of what a writer that is gone has written.
bool InputFile::WaitForData() {
  pollfd waited{descriptor_, POLLIN, 0};
  int ready = -1;
  do {
    ready = poll(&waited, 1, patience_);
  } while (ready < 0 && errno == EINTR);
  silent_ = ready == 0;
  return ready > 0;
}

}  // namespace torvane
