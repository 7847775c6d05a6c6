#include "core/files/atomic_save.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <optional>
#include <system_error>

#include "core/messages.h"

namespace torvane {
namespace {

constexpr int MaxLinks = 40;
constexpr int NameAttempts = 1000;
constexpr mode_t NewFileMode = 0666;  // less what the user's mask takes away
constexpr mode_t PermissionBits = 07777;

std::string FolderOf(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? "" : path.substr(0, slash + 1);
}

// What the symbolic links at the path lead to, whether or not there is a file; nothing for links
// that go round.
std::optional<std::string> FollowLinks(std::string path) {
  for (int i = 0; i < MaxLinks; ++i) {
    std::array<char, PATH_MAX> target{};
    const ssize_t length = readlink(path.c_str(), target.data(), target.size());
    if (length < 0) return path;
    const std::string next(target.data(), static_cast<std::size_t>(length));
    path = next.starts_with('/') ? next : FolderOf(path).append(next);
  }
  return std::nullopt;
}

/// A file opened for writing. Each step tells whether it succeeded; errno has the reason.
class OutputFile {
 public:
  explicit OutputFile(int descriptor) : descriptor_(descriptor) {}
  ~OutputFile() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  bool IsOpen() const { return descriptor_ >= 0; }

  bool Write(std::string_view bytes) const {
    while (!bytes.empty()) {
      const ssize_t count = write(descriptor_, bytes.data(), bytes.size());
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) return false;
      bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
  }

  // Only root may give a file away; a file that then belongs to the user must not let its new
  // group or owner do more than before, which the permissions alone decide.
  bool TakeAttributes(const struct stat& old) const {
    const bool sameOwner = fchown(descriptor_, old.st_uid, old.st_gid) == 0;
    const mode_t kept = sameOwner ? PermissionBits : PermissionBits & ~(S_ISUID | S_ISGID);
    return fchmod(descriptor_, old.st_mode & kept) == 0;
  }

  bool Flush() const { return fsync(descriptor_) == 0; }

  bool Close() {
    const int descriptor = descriptor_;
    descriptor_ = -1;
    return close(descriptor) == 0;
  }

 private:
  int descriptor_;
};

/// A new file beside the target. It is removed again unless it has taken the target's place.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& folder) {
    const std::string stem = folder + ".torvane-" + std::to_string(getpid()) + "-";
    for (int i = 0; i < NameAttempts && descriptor_ < 0; ++i) {
      name_ = stem + std::to_string(i);
      descriptor_ = open(name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, NewFileMode);
      if (descriptor_ < 0 && errno != EEXIST) break;
    }
  }
  ~TemporaryFile() {
    if (descriptor_ >= 0 && !moved_) unlink(name_.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  int Descriptor() const { return descriptor_; }
  bool MoveTo(const std::string& target) {
    moved_ = std::rename(name_.c_str(), target.c_str()) == 0;
    return moved_;
  }

 private:
  std::string name_;
  int descriptor_ = -1;
  bool moved_ = false;
};

bool ReportOpening(const std::string& path) {
  Error("Cannot open " + path);
  return false;
}

bool ReportWriting(const std::string& path) {
  Error("Cannot write " + path + ": " + std::generic_category().message(errno));
  return false;
}

bool WriteInPlace(const std::string& path, std::string_view bytes) {
  // A pipe without a reader is not waited for.
  OutputFile file(open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file.IsOpen()) return ReportOpening(path);
  return (file.Write(bytes) && file.Close()) || ReportWriting(path);
}

// Makes the renaming itself last. Some file systems cannot; the file is whole either way.
void FlushFolder(const std::string& folder) {
  const OutputFile handle(
      open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (handle.IsOpen()) handle.Flush();
}

}  // namespace

bool SaveAtomically(const std::string& path, std::string_view bytes) {
  struct stat old {};
  const bool exists = stat(path.c_str(), &old) == 0;
  if (exists && S_ISDIR(old.st_mode)) return ReportOpening(path);
  if (exists && !S_ISREG(old.st_mode)) return WriteInPlace(path, bytes);

  const std::optional<std::string> target = FollowLinks(path);
  if (!target || target->empty()) return ReportOpening(path);
  if (exists && access(target->c_str(), W_OK) != 0) return ReportOpening(path);

  const std::string folder = FolderOf(*target);
  TemporaryFile temporary(folder);
  OutputFile file(temporary.Descriptor());
  if (!file.IsOpen()) return ReportOpening(path);
  const bool whole = file.Write(bytes) && (!exists || file.TakeAttributes(old)) && file.Flush() &&
                     file.Close() && temporary.MoveTo(*target);
  if (!whole) return ReportWriting(path);
  FlushFolder(folder);
  return true;
}

}  // namespace torvane
