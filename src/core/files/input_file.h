#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>

namespace torvane {

/// A file open for reading. A name without a file, or of a folder, opens nothing; errno has the
/// reason. What is no plain file may have nobody at its other end, so it is waited for only so
/// long.
class InputFile {
 public:
  static constexpr int WaitForEver = -1;
  /// Bytes that are read at a time.
  static constexpr std::size_t PieceSize = 65536;

  /// `patience`: milliseconds that a pipe or device may stay silent.
  InputFile(const std::string& path, int patience);
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  bool IsOpen() const { return descriptor_ != -1; }
  /// Bytes of a plain file when it was opened; 0 of anything else.
  std::size_t Size() const { return size_; }

  /// Bytes read; 0 at the end, negative after a failure.
  ssize_t Read(char* buffer, std::size_t size);
  /// The failure was that nothing came for as long as was to be waited.
  bool WasSilent() const { return silent_; }

 private:
  bool WaitForData();

  int descriptor_;
  int patience_;
  bool plain_ = false;
  std::size_t size_ = 0;
  bool silent_ = false;
};

}  // namespace torvane
