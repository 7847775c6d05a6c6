#include "core/files/atomic_save.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>

#include "core/files/file_fault.h"
#include "core/files/output_file.h"
#include "core/files/temporary_file.h"
#include "core/messages.h"

namespace torvane {
namespace {

constexpr int MaxLinks = 40;

std::string FolderOf(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? "" : path.substr(0, slash + 1);
}

/// What a path stands for.
struct Target {
  std::string Path;  ///< with links followed
  struct stat Old {};
  bool Exists = false;
  int Fault = 0;  ///< why it cannot be written, as errno has it; 0: it can

  bool IsPlain() const { return !Exists || S_ISREG(Old.st_mode); }
};

int ErrnoUnless(bool good) {
  return good ? 0 : errno;
}

Target LookAt(const std::string& path) {
  Target target;
  target.Exists = stat(path.c_str(), &target.Old) == 0;
  const int fault = target.Exists ? 0 : errno;
  if (fault != 0 && fault != ENOENT) {
    target.Fault = fault;
  } else if (target.Exists && S_ISDIR(target.Old.st_mode)) {
    target.Fault = EISDIR;
  } else if (target.Exists) {
    target.Fault = ErrnoUnless(access(path.c_str(), W_OK) == 0);
  }
  if (target.Fault != 0 || !target.IsPlain()) return target;
  target.Path = FollowLinks(path).value_or("");
  const std::string folder = FolderOf(target.Path);
  if (target.Path.empty()) {
    target.Fault = ENOENT;
  } else {
    target.Fault = ErrnoUnless(access(folder.empty() ? "." : folder.c_str(), W_OK | X_OK) == 0);
  }
  return target;
}

// To take the target's place.
bool IsReady(const OutputFile& file, const Target& target) {
  return (!target.Exists || file.TakeAttributes(target.Old)) && file.Flush();
}

std::string WriteInPlace(const std::string& path, std::string_view bytes, Readerless pipes) {
  const int wait = pipes == Readerless::Wait ? 0 : O_NONBLOCK;
  OutputFile file(open(path.c_str(), O_WRONLY | O_CLOEXEC | wait));
  if (!file.IsOpen()) return CannotOpen(path, errno);
  return file.Write(bytes) && file.Close() ? "" : CannotWrite(path, errno);
}

}  // namespace

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

void FlushFolderOf(const std::string& path) {
  const std::string folder = FolderOf(path);
  const OutputFile handle(
      open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (handle.IsOpen()) handle.Flush();
}

std::string WhyNotWritable(const std::string& path) {
  const int fault = LookAt(path).Fault;
  return fault == 0 ? "" : CannotOpen(path, fault);
}

std::string ReplaceFile(const std::string& path, std::string_view bytes, Readerless pipes) {
  const Target target = LookAt(path);
  if (target.Fault != 0) return CannotOpen(path, target.Fault);
  if (!target.IsPlain()) return WriteInPlace(path, bytes, pipes);

  const std::string folder = FolderOf(target.Path);
  TemporaryFile temporary(folder);
  const OutputFile& file = temporary.File();
  if (!file.IsOpen()) return CannotOpen(path, errno);
  const bool whole = file.Write(bytes) && IsReady(file, target) && temporary.MoveTo(target.Path);
  if (!whole) return CannotWrite(path, errno);
  FlushFolderOf(target.Path);
  return "";
}

std::string PutInPlace(const OutputFile& file, const std::string& name, const std::string& path) {
  const Target target = LookAt(path);
  if (target.Fault != 0) return CannotOpen(path, target.Fault);
  const bool moved = target.IsPlain() && IsReady(file, target) &&
                     std::rename(name.c_str(), target.Path.c_str()) == 0;
  if (!moved) return CannotWrite(path, errno);
  FlushFolderOf(target.Path);
  return "";
}

bool SaveAtomically(const std::string& path, std::string_view bytes) {
  const std::string fault = ReplaceFile(path, bytes);
  if (!fault.empty()) Error(fault);
  return fault.empty();
}

}  // namespace torvane
