#include "ui/session/owned_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <cerrno>
#include <cstdio>
#include <utility>

namespace torvane {

namespace {

bool Lock(int descriptor) {
  return flock(descriptor, LOCK_EX | LOCK_NB) == 0;
}

// Its owner may have put a newer one in its place before it let go of the old.
bool IsStillThere(int descriptor, const QByteArray& name) {
  struct stat opened {};
  struct stat named {};
  return fstat(descriptor, &opened) == 0 && stat(name.constData(), &named) == 0 &&
         opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
}

bool WriteAll(int descriptor, const std::string& text) {
  for (std::size_t done = 0; done < text.size();) {
    const ssize_t count = write(descriptor, text.data() + done, text.size() - done);
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) done += static_cast<std::size_t>(count);
  }
  return fsync(descriptor) == 0;
}

}  // namespace

OwnedFile::OwnedFile(QString path, int descriptor)
    : path_(std::move(path)), descriptor_(descriptor) {}

OwnedFile::OwnedFile(OwnedFile&& other) noexcept
    : path_(std::move(other.path_)), descriptor_(std::exchange(other.descriptor_, -1)) {}

OwnedFile& OwnedFile::operator=(OwnedFile&& other) noexcept {
  std::swap(path_, other.path_);
  std::swap(descriptor_, other.descriptor_);
  return *this;
}

OwnedFile::~OwnedFile() {
  if (descriptor_ >= 0) close(descriptor_);
}

OwnedFile OwnedFile::Claim(const QString& path) {
  const QByteArray name = QFile::encodeName(path);
  OwnedFile file(path, open(name.constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW));
  const bool own = file.Exists() && Lock(file.descriptor_) && IsStillThere(file.descriptor_, name);
  return own ? std::move(file) : OwnedFile();
}

// Written beside the old one, flushed, and renamed over it.
OwnedFile OwnedFile::Write(const QString& path, const std::string& text) {
  const QByteArray name = QFile::encodeName(path);
  const QByteArray draft = name + ".new";
  unlink(draft.constData());  // left by a write that was cut off
  OwnedFile file(path, open(draft.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (!file.Exists()) return {};
  if (Lock(file.descriptor_) && WriteAll(file.descriptor_, text) &&
      std::rename(draft.constData(), name.constData()) == 0) {
    return file;
  }
  const int fault = errno;
  unlink(draft.constData());
  errno = fault;
  return {};
}

void OwnedFile::Remove() {
  if (!Exists()) return;
  const QByteArray name = QFile::encodeName(path_);
  unlink(name.constData());
  unlink((name + ".new").constData());
  *this = OwnedFile();
}

bool OwnedFile::Rename(const QString& path) {
  if (std::rename(QFile::encodeName(path_).constData(), QFile::encodeName(path).constData()) != 0) {
    return false;
  }
  path_ = path;
  return true;
}

}  // namespace torvane
