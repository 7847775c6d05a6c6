#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace torvane::loops {

/// What a loop computes with its numbers. Truth is 1 or 0.
enum class Operation {
  // Arithmetic, of two numbers.
  Add,
  Subtract,
  Multiply,
  Divide,
  // Functions of two numbers.
  Power,
  Atan2,
  Min,
  Max,
  Mod,
  // Of one.
  Negate,
  Abs,
  Sign,
  Floor,
  Ceil,
  Sqrt,
  Exp,
  Log,
  Log10,
  Sin,
  Cos,
  Tan,
  Asin,
  Acos,
  Atan,
  // Comparisons.
  Less,
  LessEqual,
  Equal,
  NotEqual,
  // Of truths.
  Not,
  And,
  Or,
  // Parts: condition, value, ..., the value otherwise.
  If,
};

inline bool IsArithmetic(Operation what) {
  return what <= Operation::Divide;
}
inline bool OfTwoNumbers(Operation what) {
  return what <= Operation::Mod;
}
inline bool IsComparison(Operation what) {
  return what >= Operation::Less && what <= Operation::NotEqual;
}

/// Of arithmetic, functions and comparisons; the second number is ignored where there is only one.
double Apply(Operation what, double a, double b);

/// The function of that name, as users write it; nullptr when there is none.
struct Function {
  std::string_view Name;
  Operation What;
};
const Function* FindFunction(std::string_view name);
/// Of these functions, and of what else is called like one.
std::vector<std::string> FunctionNames();
/// How many numbers it takes.
inline std::size_t ArgumentCount(Operation what) {
  return OfTwoNumbers(what) ? 2 : 1;
}

}  // namespace torvane::loops
