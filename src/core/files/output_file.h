#pragma once

#include <sys/stat.h>

#include <string_view>

namespace torvane {

/// The rights to a new file, less what the user's mask takes away.
inline constexpr mode_t NewFileMode = 0666;

/// A file that is being written, closed at the latest with the object. Each step tells whether it
/// succeeded; errno has the reason.
class OutputFile {
 public:
  /// Takes the descriptor over; -1 is no file.
  explicit OutputFile(int descriptor) : descriptor_(descriptor) {}
  ~OutputFile() { Close(); }
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  bool IsOpen() const { return descriptor_ != -1; }
  int Descriptor() const { return descriptor_; }

  /// All of the bytes, however many calls that takes; waits for a reader of a pipe to make room.
  bool Write(std::string_view bytes) const;

  /// Permissions of the old file, and its owner where that is possible.
  bool TakeAttributes(const struct stat& old) const;

  /// Waits until what was written is on the disk.
  bool Flush() const;

  bool Close();

 private:
  int descriptor_;
};

}  // namespace torvane
