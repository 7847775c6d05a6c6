#include "core/files/temporary_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <string_view>

namespace torvane {
namespace {

constexpr std::string_view Prefix = ".torvane-";
constexpr int NameAttempts = 1000;

sigset_t HoldBackSignals() {
  sigset_t signals;
  sigset_t before;
  sigemptyset(&signals);
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, number);
  pthread_sigmask(SIG_BLOCK, &signals, &before);
  return before;
}

// The prefix, the process's number and a count.
bool IsTemporaryName(std::string_view name) {
  if (!name.starts_with(Prefix)) return false;
  name.remove_prefix(Prefix.size());
  const auto dash = name.find('-');
  return dash != std::string_view::npos && dash > 0 && dash + 1 < name.size() &&
         name.find_first_not_of("0123456789-") == std::string_view::npos;
}

/// Whether the name still stands for the open file.
bool IsNamed(int descriptor, const std::string& name) {
  struct stat open {};
  struct stat named {};
  return fstat(descriptor, &open) == 0 && lstat(name.c_str(), &named) == 0 &&
         open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

void RemoveUnlessHeld(const std::string& name) {
  const OutputFile file(open(name.c_str(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat status {};
  if (!file.IsOpen() || fstat(file.Descriptor(), &status) != 0 || !S_ISREG(status.st_mode)) return;
  if (flock(file.Descriptor(), LOCK_EX | LOCK_NB) != 0 || !IsNamed(file.Descriptor(), name)) return;
  unlink(name.c_str());
}

void RemoveLeftBehind(const std::string& folder) {
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.empty() ? "." : folder.c_str()),
                                                    closedir);
  if (!entries) return;
  while (const dirent* entry = readdir(entries.get())) {
    if (IsTemporaryName(entry->d_name)) RemoveUnlessHeld(folder + entry->d_name);
  }
}

}  // namespace

TemporaryFile::TemporaryFile(const std::string& folder)
    : heldBack_(HoldBackSignals()), file_(Create(folder)) {}

int TemporaryFile::Create(const std::string& folder) {
  RemoveLeftBehind(folder);
  const std::string stem = folder + std::string(Prefix) + std::to_string(getpid()) + "-";
  for (int i = 0; i < NameAttempts; ++i) {
    name_ = stem + std::to_string(i);
    const int descriptor =
        open(name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, NewFileMode);
    if (descriptor == -1 && errno == EEXIST) continue;
    if (descriptor == -1) return -1;
    // A file system without locks is written without; nothing is ever removed there.
    flock(descriptor, LOCK_EX);
    if (IsNamed(descriptor, name_)) return descriptor;
    close(descriptor);  // taken for a file that was left, just before it was locked
  }
  return -1;
}

TemporaryFile::~TemporaryFile() {
  if (file_.IsOpen() && !moved_) unlink(name_.c_str());
  file_.Close();
  pthread_sigmask(SIG_SETMASK, &heldBack_, nullptr);
}

bool TemporaryFile::MoveTo(const std::string& target) {
  moved_ = std::rename(name_.c_str(), target.c_str()) == 0;
  return moved_;
}

}  // namespace torvane
