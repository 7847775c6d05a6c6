#pragma once

#include <string_view>

namespace torvane {

/// Takes the lines of a text one by one: LF ends a line, CR is ignored, what follows the last LF is
/// a line too. Blank lines are counted and passed over.
class LineReader {
 public:
  explicit LineReader(std::string_view text) : rest_(text) {}

  /// False at the end of the text.
  bool Next(std::string& line);
  int Number() const { return number_; }

 private:
  void PassBlankLines();

  std::string_view rest_;
  int number_ = 0;
};

}  // namespace torvane
