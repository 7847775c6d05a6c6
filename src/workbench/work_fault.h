#pragma once

#include <stdexcept>
#include <string>

namespace torvane {

/// Work that cannot be carried out; the text is one line for the user, empty when the reason has
/// been reported already. Settings go by the names that they have on the command line
/// ("--time-base").
class WorkFault : public std::runtime_error {
 public:
  /// Where the fault lies.
  enum class Kind {
    Stopped,  ///< the run was stopped by an error, or by somebody
    Usage,    ///< what was asked for makes no sense
    File,     ///< a file could not be read or written
  };

  WorkFault(Kind kind, const std::string& text) : std::runtime_error(text), kind_(kind) {}
  Kind What() const { return kind_; }

 private:
  Kind kind_;
};

/// A fault of Kind::Stopped.
inline WorkFault StoppedError(const std::string& text) {
  return {WorkFault::Kind::Stopped, text};
}
/// A fault of Kind::Usage.
inline WorkFault UsageError(const std::string& text) {
  return {WorkFault::Kind::Usage, text};
}
/// A fault of Kind::File.
inline WorkFault FileError(const std::string& text) {
  return {WorkFault::Kind::File, text};
}

}  // namespace torvane
