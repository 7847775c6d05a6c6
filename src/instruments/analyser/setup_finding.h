#pragma once

#include <string>

namespace torvane {

/// What is to be said of a set-up: a refusal keeps it from being used, a warning or a note does
/// not.
struct SetupFinding {
  /// How much the finding weighs.
  enum class Kind { Nothing, Refusal, Warning, Note };
  Kind What = Kind::Nothing;
  std::string Text;
  std::string WouldFit;  ///< with a refusal, what would not be refused; may be empty
};

}  // namespace torvane
