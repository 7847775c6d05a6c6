#include "core/files/model_file_lines.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string>

#include "core/files/file_fault.h"
#include "core/files/input_file.h"
#include "core/files/model_file.h"
#include "core/files/record.h"
#include "core/messages.h"

namespace torvane {
namespace {

/// Follows the lines of the file that is being read.
class LineLimits {
 public:
  /// What is more than a file may have, as soon as it is there; nothing before.
  const char* Add(std::string_view piece) {
    for (const char c : piece) {
      if (c != '\n') {
        if (length_ < ModelLine.size() && c != ModelLine[length_]) isModel_ = false;
        if (++length_ > MaxModelLineLength) return "a line longer than 64 KiB";
        continue;
      }
      if (length_ > 1 && ++lines_ > MaxModelLines) return "more than 20000 lines";
      const bool named = isModel_ && length_ > ModelLine.size();
      if (named && ++models_ > MaxModelChanges) return "more than 100 models";
      length_ = 0;
      isModel_ = true;
    }
    return nullptr;
  }

 private:
  static constexpr std::string_view ModelLine = "Model,";
  std::size_t length_ = 0;
  bool isModel_ = true;
  int lines_ = 0;
  int models_ = 0;
};

}  // namespace

// A file may consist of millions of blank lines.
void LineReader::PassBlankLines() {
  const std::size_t blank = std::min(rest_.find_first_not_of("\r\n"), rest_.size());
  number_ += static_cast<int>(std::count(rest_.begin(), rest_.begin() + blank, '\n'));
  rest_.remove_prefix(blank);
}

bool LineReader::Next(std::string& line) {
  PassBlankLines();
  if (rest_.empty()) return false;
  const std::size_t end = rest_.find('\n');
  line = rest_.substr(0, end);
  std::erase(line, '\r');
  rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
  ++number_;
  return true;
}

bool ReadModelText(const std::string& path, std::string& text, int patience) {
  InputFile file(path, patience);
  if (!file.IsOpen()) {
    Error(CannotOpen(path, errno));
    return false;
  }
  LineLimits lines;
  std::array<char, InputFile::PieceSize> buffer{};
  text.clear();
  for (;;) {
    const ssize_t count = file.Read(buffer.data(), buffer.size());
    if (count == 0) return true;
    if (count < 0) {
      Error(file.WasSilent() ? "Nothing comes from " + path + ".  It is no model file."
                             : "Error reading file.  " + path + ": " + SystemReason(errno));
      return false;
    }
    const std::string_view piece(buffer.data(), static_cast<std::size_t>(count));
    if (text.size() + piece.size() > MaxModelFileSize) {
      Error(path + " is larger than 16 MiB.  It is no model file.");
      return false;
    }
    if (const char* const more = lines.Add(piece)) {
      Error(path + " has " + more + ".  It is no model file.");
      return false;
    }
    text += piece;
  }
}

std::string ModelNameIn(std::string_view text) {
  LineReader lines(text);
  for (std::string line; lines.Next(line);) {
    if (!line.starts_with("Model,")) continue;
    const Record record = ParseRecord(line, lines.Number());
    if (record.Fields.size() == 2) return record.Fields[1];
  }
  return {};
}

std::string SettingsText(const ZelModel& model) {
  const std::string text = ModelFileText(model);
  std::string settings;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find('\n', start), text.size() - 1) + 1;
    const std::string_view line(text.data() + start, end - start);
    if (line.find(",Display,") == std::string_view::npos) settings += line;
    start = end;
  }
  return settings;
}

}  // namespace torvane
