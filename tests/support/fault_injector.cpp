// Loaded into torvane-cli before the C library: makes one system call on the temporary file of a
// save fail, or end the program. TORVANE_FAULT_CALL names the call, TORVANE_FAULT_ERRNO the reason
// or TORVANE_FAULT_SIGNAL the signal.

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <cstring>

namespace {

int temporary = -1;
int writes = 0;

template <class Function>
Function* Real(const char* name, Function* /*type*/) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool IsTemporary(const char* path) {
  return std::strstr(path, ".torvane-") != nullptr;
}

int Number(const char* variable) {
  const char* const text = std::getenv(variable);
  return text ? std::atoi(text) : 0;
}

bool Fails(const char* call) {
  const char* const wanted = std::getenv("TORVANE_FAULT_CALL");
  if (!wanted || std::strcmp(wanted, call) != 0) return false;
  if (const int signal = Number("TORVANE_FAULT_SIGNAL")) {
    std::raise(signal);
    return false;
  }
  errno = Number("TORVANE_FAULT_ERRNO");
  return true;
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  const bool creates = IsTemporary(path) && (flags & O_CREAT) != 0;
  if (creates && Fails("open")) return -1;
  const int descriptor = Real("open", open)(path, flags, mode);
  if (creates) temporary = descriptor;
  return descriptor;
}

// A disk that fills up takes part of the bytes first.
ssize_t write(int descriptor, const void* bytes, size_t size) {
  const auto real = Real("write", write);
  if (descriptor != temporary || !Fails("write")) return real(descriptor, bytes, size);
  return writes++ == 0 ? real(descriptor, bytes, 1) : -1;
}

int fchmod(int descriptor, mode_t mode) noexcept {
  if (descriptor == temporary && Fails("fchmod")) return -1;
  return Real("fchmod", fchmod)(descriptor, mode);
}

int fsync(int descriptor) {
  if (descriptor == temporary && Fails("fsync")) return -1;
  return Real("fsync", fsync)(descriptor);
}

int rename(const char* from, const char* to) noexcept {
  if (IsTemporary(from) && Fails("rename")) return -1;
  return Real("rename", rename)(from, to);
}
}
