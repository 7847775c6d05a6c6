#pragma once

#include <QString>
#include <string>

namespace torvane {

/// A file that belongs to this process as long as the object lives. Who owns it is decided by a
/// lock, which ends with the process whatever becomes of it; a number of the process would be
/// wrong in a container and after it was given out again.
class OwnedFile {
 public:
  OwnedFile() = default;
  OwnedFile(OwnedFile&& other) noexcept;
  OwnedFile& operator=(OwnedFile&& other) noexcept;
  ~OwnedFile();

  /// The existing file, unless it belongs to somebody.
  static OwnedFile Claim(const QString& path);
  /// A new file at `path` with this text, in place of the one that may be there. That one stays as
  /// it was, and the result is no file, when the new one cannot be made whole; errno tells why.
  static OwnedFile Write(const QString& path, const std::string& text);

  bool Exists() const { return descriptor_ >= 0; }
  const QString& Path() const { return path_; }
  void Remove();
  /// False when it keeps its name.
  bool Rename(const QString& path);

 private:
  OwnedFile(QString path, int descriptor);

  QString path_;
  int descriptor_ = -1;
};

}  // namespace torvane
