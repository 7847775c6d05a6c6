#pragma once

#include <deque>
#include <string>
#include <vector>

#include "loops/syntax.h"

namespace torvane::drawing {

/// "x = value" or "der(x) = value".
struct Definition {
  std::string Name;  ///< as the left side is written
  bool Derivative = false;
  const loops::Expression* Value = nullptr;
  const loops::Expression* Period = nullptr;  ///< of the samples at which it holds
};

/// A state that is set anew while a condition holds.
struct Setting {
  std::string State;
  const loops::Expression* Condition;
  const loops::Expression* Value;
};

/// What a loop's text defines, an entry a signal, in the order of writing. Equations within an if
/// become expressions with one.
class EquationList {
 public:
  /// The text outlives it. Throws DrawingFault when the conditions around equations make too much
  /// of it.
  explicit EquationList(const loops::ModelText& text);

  const std::vector<Definition>& Definitions() const { return definitions_; }
  const std::vector<Setting>& Settings() const { return settings_; }

 private:
  void Add(const std::vector<loops::Equation>& equations, const loops::Expression* period);
  void AddWhen(const loops::Equation& when);
  void AddIf(const loops::Equation& choice, const loops::Expression* period);
  loops::Expression ValueIn(const loops::Equation& choice, const loops::Expression& left);
  loops::Expression ValueIn(const std::vector<loops::Equation>& equations,
                            const loops::Expression& left);
  void Count(const loops::Expression& copied);

  std::vector<Definition> definitions_;
  std::vector<Setting> settings_;
  std::deque<loops::Expression> made_;
  std::size_t copied_ = 0;  ///< parts of expressions
};

}  // namespace torvane::drawing
