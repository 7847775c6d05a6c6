#pragma once

#include <stdexcept>
#include <string>

namespace torvane::cli {

/// How the program ends.
enum class ExitCode {
  Done = 0,
  Stopped = 1,  ///< the run was stopped by an error
  Usage = 2,    ///< wrong usage
  File = 3,     ///< a file could not be read or written
};

/// A command cannot be carried out; the text is one line for the user, empty when the reason has
/// been reported already.
class CommandError : public std::runtime_error {
 public:
  CommandError(ExitCode code, const std::string& text) : std::runtime_error(text), code_(code) {}
  ExitCode Code() const { return code_; }

 private:
  ExitCode code_;
};

inline CommandError StoppedError(const std::string& text) {
  return {ExitCode::Stopped, text};
}
inline CommandError UsageError(const std::string& text) {
  return {ExitCode::Usage, text};
}
inline CommandError FileError(const std::string& text) {
  return {ExitCode::File, text};
}

}  // namespace torvane::cli
