#include "loops/operations.h"

#include <algorithm>
#include <array>

#include "loops/operators.h"

namespace torvane::loops {

namespace {

constexpr std::array Functions{
    Function{"sin", Operation::Sin},     Function{"cos", Operation::Cos},
    Function{"tan", Operation::Tan},     Function{"asin", Operation::Asin},
    Function{"acos", Operation::Acos},   Function{"atan", Operation::Atan},
    Function{"atan2", Operation::Atan2}, Function{"exp", Operation::Exp},
    Function{"log", Operation::Log},     Function{"log10", Operation::Log10},
    Function{"sqrt", Operation::Sqrt},   Function{"abs", Operation::Abs},
    Function{"sign", Operation::Sign},   Function{"min", Operation::Min},
    Function{"max", Operation::Max},     Function{"floor", Operation::Floor},
    Function{"ceil", Operation::Ceil},   Function{"mod", Operation::Mod},
};

}  // namespace

const Function* FindFunction(std::string_view name) {
  const auto* const found = std::find_if(Functions.begin(), Functions.end(),
                                         [&](const Function& f) { return f.Name == name; });
  return found == Functions.end() ? nullptr : found;
}

std::vector<std::string> FunctionNames() {
  std::vector<std::string> names{"pre", "delay", "der", "noEvent"};
  for (const Function& function : Functions) names.emplace_back(function.Name);
  return names;
}

double Apply(Operation what, double a, double b) {
  switch (what) {
    case Operation::Add:
      return Add::Of(a, b);
    case Operation::Subtract:
      return Subtract::Of(a, b);
    case Operation::Multiply:
      return Multiply::Of(a, b);
    case Operation::Divide:
      return Divide::Of(a, b);
    case Operation::Power:
      return Power::Of(a, b);
    case Operation::Atan2:
      return Atan2::Of(a, b);
    case Operation::Min:
      return Min::Of(a, b);
    case Operation::Max:
      return Max::Of(a, b);
    case Operation::Mod:
      return Mod::Of(a, b);
    case Operation::Negate:
      return Negate::Of(a);
    case Operation::Abs:
      return Abs::Of(a);
    case Operation::Sign:
      return Sign::Of(a);
    case Operation::Floor:
      return Floor::Of(a);
    case Operation::Ceil:
      return Ceil::Of(a);
    case Operation::Sqrt:
      return Sqrt::Of(a);
    case Operation::Exp:
      return Exp::Of(a);
    case Operation::Log:
      return Log::Of(a);
    case Operation::Log10:
      return Log10::Of(a);
    case Operation::Sin:
      return Sin::Of(a);
    case Operation::Cos:
      return Cos::Of(a);
    case Operation::Tan:
      return Tan::Of(a);
    case Operation::Asin:
      return Asin::Of(a);
    case Operation::Acos:
      return Acos::Of(a);
    case Operation::Atan:
      return Atan::Of(a);
    case Operation::Less:
      return Less::Of(a, b) ? 1.0 : 0.0;
    case Operation::LessEqual:
      return LessEqual::Of(a, b) ? 1.0 : 0.0;
    case Operation::Equal:
      return Equal::Of(a, b) ? 1.0 : 0.0;
    case Operation::NotEqual:
      return NotEqual::Of(a, b) ? 1.0 : 0.0;
    default:
      return a;
  }
}

}  // namespace torvane::loops
