#include "core/files/output_file.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace torvane {
namespace {

constexpr mode_t PermissionBits = 07777;

}  // namespace

bool OutputFile::Write(std::string_view bytes) const {
  while (!bytes.empty()) {
    const ssize_t count = write(descriptor_, bytes.data(), bytes.size());
    if (count >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno == EAGAIN) {
      pollfd ready{descriptor_, POLLOUT, 0};
      poll(&ready, 1, -1);
    } else if (errno != EINTR) {
      return false;
    }
  }
  return true;
}

// Only root may give a file away; a file that then belongs to the user must not let its new group
// or owner do more than before, which the permissions alone decide.
bool OutputFile::TakeAttributes(const struct stat& old) const {
  const bool sameOwner = fchown(descriptor_, old.st_uid, old.st_gid) == 0;
  const mode_t kept = sameOwner ? PermissionBits : PermissionBits & ~(S_ISUID | S_ISGID);
  return fchmod(descriptor_, old.st_mode & kept) == 0;
}

bool OutputFile::Flush() const {
  return fsync(descriptor_) == 0;
}

bool OutputFile::Close() {
  const int descriptor = std::exchange(descriptor_, -1);
  return descriptor == -1 || close(descriptor) == 0;
}

}  // namespace torvane
