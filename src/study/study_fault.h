#pragma once

#include <stdexcept>
#include <string>

namespace torvane {

/// A study that cannot be made or cannot go on; the text is one line for the user.
class StudyFault : public std::runtime_error {
 public:
  /// Where the fault lies.
  enum class Kind {
    Asked,    ///< what was asked for makes no study
    File,     ///< a file could not be read or written, or is not the study's
    Stopped,  ///< the runs ended before time
  };

  StudyFault(Kind kind, const std::string& text) : std::runtime_error(text), kind_(kind) {}
  explicit StudyFault(const std::string& text) : StudyFault(Kind::Asked, text) {}

  Kind What() const { return kind_; }

 private:
  Kind kind_;
};

}  // namespace torvane
